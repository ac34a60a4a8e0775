"""Messages that compose writes, read by Python's email package and by show: subject, sender's name, file name and body
come back the same in all languages. The texts keep clear of what the library does otherwise than readers of RFC 2047
expect: no blank between two words of non-ASCII letters in a header, and no header that has to be folded.
usage: compose_test.py DIRECTORY-OF-PROGRAMS"""

import email
import email.policy
import pathlib
import subprocess
import sys
import tempfile
import unittest

from letters import SAMPLES

PROGRAMS = pathlib.Path(sys.argv.pop())


def written(language, subject, sender, file_name, body):
    arguments = [PROGRAMS / "compose", language, subject, sender, file_name, body]
    return subprocess.run(arguments, capture_output=True, check=True).stdout


class ComposedMessage(unittest.TestCase):
    def test_reads_the_same_in_every_language(self):
        for language, letters, _ in SAMPLES:
            with self.subTest(language):
                self.check(language, letters)

    def check(self, language, letters):
        body = f"{letters} = 100%, _?.\n\n{letters * 12}\n{'long ' * 20}{letters}.\n"
        wire = written(language, f"Re: {letters}", f"{letters} Abc", f"{letters[:4]}.txt", body)
        message = email.message_from_bytes(wire, policy=email.policy.default)
        attachment = next(message.iter_attachments())
        self.assertEqual(message["subject"], f"Re: {letters}")
        self.assertEqual(message["from"].addresses[0].display_name, f"{letters} Abc")
        self.assertEqual(attachment.get_filename(), f"{letters[:4]}.txt")
        for part in message.get_body(), attachment:
            self.assertEqual(part.get_content(), body.replace("\n", "\r\n"))
        self.check_shown(language, wire, [f"Re: {letters}", f"{letters} Abc <", f"{letters[:4]}.txt", letters * 12])

    def check_shown(self, language, wire, texts):
        with tempfile.TemporaryDirectory() as directory:
            path = pathlib.Path(directory, f"{language}.eml")
            path.write_bytes(wire)
            shown = subprocess.run([PROGRAMS / "show", path], capture_output=True, check=True).stdout.decode()
        for text in texts:
            self.assertIn(text, shown)

    def test_is_plain_where_the_text_is_ascii(self):
        wire = written("de", "Hello", 'Doe, "Jim"', "a.txt", "just text\n")
        message = email.message_from_bytes(wire, policy=email.policy.default)
        self.assertEqual(message["from"].addresses[0].display_name, 'Doe, "Jim"')
        self.assertIn(b"\r\nSubject: Hello\r\n", wire)
        self.assertEqual(message.get_body()["content-type"].params["charset"], "us-ascii")

    def test_is_refused_when_its_headers_would_break(self):
        for subject, sender, file_name in [("a\r\nBcc: b", "c", "d"), ("a", "b\nBcc: c", "d"), ("a", "b", "")]:
            with self.assertRaises(subprocess.CalledProcessError):
                written("de", subject, sender, file_name, "text")

    def test_keeps_its_headers_together_whatever_the_length_of_the_subject(self):
        for length in range(1, 130):
            wire = written("de", "ü" * length, "Jürgen", "a.txt", "text")
            message = email.message_from_bytes(wire, policy=email.policy.default)
            self.assertEqual(message["subject"].replace(" ", ""), "ü" * length)
            self.assertEqual(message["to"], "reader@example.com")


unittest.main()
