"""Header values and bodies of all languages, held against Python's codecs, email.header and quopri.
usage: neighbours_test.py WIRE-TOOL"""

import quopri
import re
import subprocess
import sys
import unittest
from email.header import Header, decode_header

from letters import SAMPLES

TOOL = subprocess.Popen([sys.argv.pop()], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)


def library(operation, language, text):
    print(operation, language, text.hex(), file=TOOL.stdin, flush=True)
    return bytes.fromhex(TOOL.stdout.readline())


def encoded(language, text):
    return library("encode-header", language, text.encode()).decode("ascii")


def decoded(language, value):
    return library("decode-header", language, value.encode()).decode()


def neighbour(value):
    """What a reader of RFC 2047 makes of a value: it unfolds first, and keeps the blanks."""
    parts = decode_header(value.replace("\r\n", ""))
    return "".join(part if isinstance(part, str) else part.decode(charset or "ascii") for part, charset in parts)


def tearDownModule():
    TOOL.stdout.close()
    TOOL.stdin.close()
    assert TOOL.wait() == 0, "the tool has failed"


class Neighbours(unittest.TestCase):
    def test_read_what_the_library_writes_in_every_language(self):
        for language, letters, _ in SAMPLES:
            text = f"Re: {letters}, abc."
            with self.subTest(language):
                self.assertEqual(neighbour(encoded(language, text)), text)
                self.assertIn("=?", encoded(language, text))
                self.assertNotIn("\r\n", encoded(language, text))

    def test_write_words_that_the_library_reads(self):
        for language, letters, charsets in SAMPLES:
            for charset in charsets + ["utf-8", "utf-7"]:
                text = letters.encode(charset, "ignore").decode(charset)
                word = re.sub("eucgb2312_cn|big5_tw", charset, Header(text, charset).encode())  # names of the codecs
                with self.subTest(language, word=word):
                    self.assertRegex(word, rf"^=\?{charset}\?[bq]\?[^ ?]+\?=$")
                    self.assertEqual(decoded(language, word), text)

    def test_undo_the_transfer_encoding_of_bodies_that_come_back_in_every_language(self):
        for language, letters, _ in SAMPLES:
            body = f"{letters} = 100% \r\n\r\n\t{letters * 30}.\r\n \t\r\n".encode()
            with self.subTest(language):
                wire = library("encode-body", language, body)
                if language not in "tr ar he yi th ja zh".split():
                    wire = quopri.decodestring(wire)
                self.assertEqual(library("decode-body", language, wire), body)

    def test_lose_the_blank_between_two_runs(self):
        value = encoded("ja", "日本 語")
        self.assertEqual(neighbour(value), "日本語")
        self.assertEqual(decoded("ja", value), "日本 語")

    def test_see_the_doubled_blank_of_a_fold_as_the_library_does(self):
        value = encoded("ko", "a" * 60 + " abc한")
        self.assertEqual(neighbour(value), "a" * 60 + "  abc한")
        self.assertEqual(decoded("ko", value), "a" * 60 + "  abc한")

    def test_join_the_words_of_a_character_that_the_library_reads_word_by_word(self):
        text = "abc" + "中" * 10
        value = encoded("zh", text)
        self.assertEqual(neighbour(value), text)
        self.assertRegex(decoded("zh", value), "^abc中{9}[^中]+$")

    def test_keep_the_blank_of_a_fold_before_a_word_that_unfolding_swallows(self):
        value = "Re:\r\n =?utf-8?Q?x?="
        self.assertEqual(neighbour(value), "Re: x")
        self.assertEqual(decoded("de", value), "Re:x")


unittest.main()
