"""Headers, parameters and bodies of all languages beside Python's codecs, email and quopri, and GMime: these read what
was written, and where they agree on what a mailer wrote, the readers for mail at large agree with them.
usage: neighbours_test.py FACE-TOOL"""

import base64
import ctypes
import email.policy
import quopri
import random
import re
import subprocess
import sys
import unittest
from email.header import Header, decode_header, make_header
from email.utils import collapse_rfc2231_value

from letters import SAMPLES

TOOL = subprocess.Popen([sys.argv.pop()], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
CHARSETS = {
    "iso-8859-1": "Größe der Straße", "windows-1252": "„fünf“ – 5 €", "iso-8859-2": "Žluťoučký kůň",
    "koi8-r": "Привет, мир", "windows-1251": "Журнал", "iso-8859-7": "Καλημέρα", "windows-1256": "رسالة",
    "iso-2022-jp": "会議の件〜カタカナ", "shift_jis": "会議の件", "euc-jp": "日本語", "euc-kr": "안녕하세요",
    "gb2312": "会议通知，谢谢", "gb18030": "会議", "big5": "許功蓋", "tis-620": "สวัสดี",
    "utf-8": "Grüße 🎉 日本",
}
try:
    GMIME, GLIB = ctypes.CDLL("libgmime-3.0.so.0"), ctypes.CDLL("libglib-2.0.so.0")
    GMIME.g_mime_init()
except OSError:
    GMIME = None


def zel(operation, language, text):
    given = text if isinstance(text, bytes) else text.encode()
    print(operation, language, given.hex() or "-", file=TOOL.stdin, flush=True)
    return bytes.fromhex(TOOL.stdout.readline())


def call(function, *arguments):
    function.restype = ctypes.c_void_p
    return ctypes.c_void_p(function(*arguments))


def read_by_gmime(value):
    line = call(GMIME.g_mime_utils_header_unfold, value.encode())
    text = call(GMIME.g_mime_utils_header_decode_text, None, line)
    result = ctypes.string_at(text).decode("utf-8", "replace")
    GLIB.g_free(line)
    GLIB.g_free(text)
    return result


def parameter_by_gmime(value):
    parameters = call(GMIME.g_mime_param_list_parse, None, value.encode())
    found = call(GMIME.g_mime_param_list_get_parameter, parameters, b"filename")
    return ctypes.string_at(call(GMIME.g_mime_param_get_value, found)).decode()


def read_by_python(value):
    return str(make_header(decode_header(re.sub(r"\r\n(?=[ \t])", "", value))))


def joined_by_python(value):
    """With the blanks that a Header would put between its parts left out."""
    parts = decode_header(value.replace("\r\n", ""))
    return "".join(part if isinstance(part, str) else part.decode(charset or "ascii") for part, charset in parts)


def neighbours(value):
    """What every neighbour reads."""
    message = email.message_from_bytes(b"Subject: " + value.encode() + b"\r\n\r\n", policy=email.policy.default)
    found = [read_by_python(value), str(message["Subject"])]
    return found + [read_by_gmime(value)] if GMIME else found


def random_text(source, letters):
    words = [
        lambda: "".join(source.choices(letters, k=source.randrange(1, 30))),
        lambda: "".join(source.choices("abc.,:;()<>@\"'!=_%/\\?", k=source.randrange(1, 12))),
        lambda: source.choice(["🎉", "日本〜①", "Привет", "ー・", "Re:", "=?utf-8?Q?x?=", "", "d" * 80, "\u2028"]),
    ]
    return " ".join(source.choice(words)() for _ in range(source.randrange(1, 12)))


def tearDownModule():
    TOOL.stdout.close()
    TOOL.stdin.close()
    assert TOOL.wait() == 0, "the tool has failed"


class Writers(unittest.TestCase):
    def test_write_what_every_neighbour_reads(self):
        source = random.Random(2047)
        for language, letters, _ in SAMPLES * 6:
            text = random_text(source, letters)
            with self.subTest(language, text=text):
                self.check_header(language, text)
                self.check_parameter(language, text)
                self.check_body(language, f"{text}\r\n\r\nFrom {text} \r\n.\r\n")

    def check_header(self, language, text):
        value = zel("write-header", language, text).decode("ascii")
        self.assertEqual(set(neighbours(value)), {text}, value)
        self.assertLessEqual(max(map(len, ("Subject: " + value).split("\r\n"))), 76)
        name = " ".join(text.split()) or "a"
        phrase = zel("write-phrase", language, name).decode("ascii")
        self.assertEqual(read_by_python(phrase + " <a@b.example>"), name + " <a@b.example>")

    def check_parameter(self, language, text):
        if text[:1] + text[-1:] in ('""', "<>"):
            return  # Python takes such marks off a decoded value
        value = zel("write-parameter", language, text).decode("ascii")
        message = email.message_from_string("Content-Disposition: attachment;\r\n " + value + "\r\n\r\n")
        found = message.get_param("filename", header="Content-Disposition")
        self.assertEqual(collapse_rfc2231_value(found), text, value)
        if GMIME:
            self.assertEqual(parameter_by_gmime(value), text, value)

    def check_body(self, language, text):
        message = email.message_from_bytes(zel("write-body", language, text))
        longest = 998 if message["Content-Transfer-Encoding"] == "7bit" else 76
        self.assertLessEqual(max(map(len, message.get_payload().split("\r\n"))), longest)
        self.assertEqual(message.get_payload(decode=True).decode(message.get_content_charset()), text)


class Readers(unittest.TestCase):
    def test_agree_with_neighbours_that_agree(self):
        source, agreed = random.Random(2822), 0
        for charset, letters in list(CHARSETS.items()) * 60:
            value = self.random_value(source, charset, letters)
            try:
                found = set(neighbours(value))
            except (LookupError, UnicodeError):  # of a character that is cut
                continue
            if len(found) == 1:
                agreed += 1
                self.assertEqual({zel("read-header", "-", value).decode()}, found, value)
        self.assertGreater(agreed, 500)

    def random_value(self, source, charset, letters):
        start = source.randrange(len(letters))
        text = (letters * 3)[start : start + source.randrange(1, 20)].strip()

        def word(data):
            if source.randrange(2):
                return f"=?{charset.upper()}?b?{base64.b64encode(data).decode()}?="
            return f"=?{charset}?Q?{''.join(f'={byte:02x}' for byte in data)}?="

        data, step = text.encode(charset), source.choice([3, 4, 6, 60])
        words = [word(data[at : at + step]) for at in range(0, len(data), step)]
        joint = source.choice([" ", "\r\n ", "\r\n\t", "  "])
        return source.choice(["", "Re: ", "abc\r\n "]) + joint.join(words) + source.choice(["", " (abc)", joint + "d"])


class Codecs(unittest.TestCase):
    def test_write_headers_that_python_reads_in_every_language(self):
        for language, letters, _ in SAMPLES:
            text = f"Re: {letters}, abc."
            with self.subTest(language):
                value = zel("encode-header", language, text).decode("ascii")
                self.assertEqual(joined_by_python(value), text)
                self.assertIn("=?", value)
                self.assertNotIn("\r\n", value)

    def test_read_words_of_every_charset_that_is_admitted(self):
        for language, letters, charsets in SAMPLES:
            for charset in charsets + ["utf-8", "utf-7"]:
                text = letters.encode(charset, "ignore").decode(charset)
                word = re.sub("eucgb2312_cn|big5_tw", charset, Header(text, charset).encode())  # names of the codecs
                with self.subTest(language, word=word):
                    self.assertRegex(word, rf"^=\?{charset}\?[bq]\?[^ ?]+\?=$")
                    self.assertEqual(zel("decode-header", language, word).decode(), text)

    def test_read_bodies_back_whose_transfer_encoding_python_undoes(self):
        for language, letters, _ in SAMPLES:
            body = f"{letters} = 100% \r\n\r\n\t{letters * 30}.\r\n \t\r\n".encode()
            with self.subTest(language):
                wire = zel("encode-body", language, body)
                if language not in "tr ar he yi th ja zh".split():
                    wire = quopri.decodestring(wire)
                self.assertEqual(zel("decode-body", language, wire), body)

    def test_read_blanks_and_cut_characters_in_their_own_way(self):
        encoded = lambda language, text: zel("encode-header", language, text).decode("ascii")
        for language, value, by_python, by_us in [
            ("ja", encoded("ja", "日本 語"), "日本語", "日本 語"),
            ("ko", encoded("ko", "a" * 60 + " abc한"), "a" * 60 + "  abc한", "a{60}  abc한"),
            ("zh", encoded("zh", "abc" + "中" * 10), "abc" + "中" * 10, "abc中{9}[^中]+"),
            ("de", "Re:\r\n =?utf-8?Q?x?=", "Re: x", "Re:x"),
        ]:
            self.assertEqual(joined_by_python(value), by_python)
            self.assertRegex(zel("decode-header", language, value).decode(), f"^{by_us}$")


unittest.main()
