"""The web mailbox as a client without a browser sees it: what is written comes back in every language, and nothing that
is hostile becomes HTML, a header, a path or a crash.
usage: webmail_test.py WEBMAIL BUNDLE-COMPILER"""

import concurrent.futures
import email
import email.policy
import pathlib
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.parse

sys.path.insert(0, str(pathlib.Path(__file__).parents[1]))

from letters import SAMPLES
from webmail_client import HOSTILE, Mailbox, corpus_messages

COMPILER, PROGRAM = sys.argv.pop(), sys.argv.pop()
FORM = {"from": "a@example.org", "to": "b@example.org", "subject": "s", "text": "t", "answer": ""}
PAGE = {"html", "head", "title", "meta", "link", "script", "body", "header", "a", "form", "label", "select", "option",
        "input", "button", "main", "article", "h1", "bdi", "dl", "div", "dt", "dd", "time", "pre", "ul", "li", "p"}


class WebMailbox(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.mailbox = cls.enterClassContext(Mailbox(PROGRAM))

    def sent(self, language, file=None, **fields):
        answer = self.mailbox.send(language, file, **(FORM | fields))
        self.assertEqual(answer.status, 303)
        return answer.headers["Location"]

    def source(self, location):
        return email.message_from_bytes(self.mailbox.ask(location.replace("letter", "source")).bytes,
                                        policy=email.policy.default)

    def test_shows_what_was_written_in_every_language(self):
        self.assertEqual(len(SAMPLES), 47)
        for language, letters, _ in SAMPLES:
            with self.subTest(language):
                long = f"\r\n  {letters} {letters * 20} &lt;\"' 🙂\r\n.\r\nFrom {letters}  \r\n"
                for subject, sender, text in [(letters, letters, letters), (
                        f"{letters * 9} 🙂 =?x?", f'Dr. "{letters}", ü', long)]:
                    name, content = f"{letters} 🙂.html", bytes(range(256)) * 9
                    quoted = sender.replace('"', '\\"')
                    page = self.mailbox.ask(self.sent(language, (name, content), subject=subject, text=text, to=(
                        f'"{letters}" <to@example.org>, cc@example.org'), **{"from": f'"{quoted}" <a@b.org>'}), language)
                    self.assertEqual(page.texts["h1"], [subject])
                    self.assertEqual(page.texts["pre"], ["\n" + text])
                    self.assertIn(letters, page.texts["dd"][0])
                    self.assertEqual(page.texts["li"], [f"{name} 3\xa0KB"])
                    link = next(link for link in page.links if link.startswith("/part"))
                    file = self.mailbox.ask(link)
                    self.assertEqual(file.bytes, content)
                    self.assertEqual(file.headers["Content-Type"], "application/octet-stream")
                    self.assertEqual(file.headers["Content-Disposition"],
                                     "attachment; filename*=UTF-8''" + urllib.parse.quote(name))

    def test_writes_messages_that_other_readers_understand(self):
        location = self.sent("de", ("Äpfel 🙂.txt", b"x"), subject="Größe 🙂", text="ä 🙂", **{"from": "Jürgen <j@x.org>"})
        message = self.source(location)
        self.assertEqual(message["subject"], "Größe 🙂")
        self.assertEqual(message["from"].addresses[0].display_name, "Jürgen")
        self.assertEqual(message.get_body().get_content(), "ä 🙂")
        self.assertEqual(next(message.iter_attachments()).get_filename(), "Äpfel 🙂.txt")
        self.assertEqual(message["mime-version"], "1.0")
        self.assertFalse(message.defects)
        form = self.mailbox.ask("/write?" + location.split("?")[1].replace("name", "answer"))
        self.assertEqual(form.fields["subject"], "Re: Größe 🙂")
        answer = self.source(self.sent("de", answer=form.fields["answer"]))
        self.assertEqual(answer["in-reply-to"], message["message-id"])
        self.assertEqual(answer["references"], message["message-id"])

    def test_takes_no_header_and_no_address_out_of_a_field(self):
        message = self.source(self.sent("de", ('a"\r\nBcc: x@y.org\r\n.txt', b""), subject="a\r\nBcc: x@y.org\r\n\r\nb",
                                        text="\0"))
        self.assertEqual(message.keys(), ["From", "To", "Subject", "Date", "Message-ID", "MIME-Version", "Content-Type",
                                          "Content-Transfer-Encoding"][:len(message.keys())])
        for address in ("", "x", "a@b@c", "a@", "@b", "a b@c", "g: a@b.org;", "a@b.org\r\nBcc: c@d.org", "<a@b>c>", "\0"):
            answer = self.mailbox.send("de", **(FORM | {"to": address, "subject": HOSTILE}))
            if answer.status == 303:
                self.assertIn("a@b", address)
                self.assertNotIn("Bcc", self.source(answer.headers["Location"]).keys())
            else:
                self.assertEqual((answer.status, answer.fields["subject"]), (422, HOSTILE))
        self.assertEqual(self.mailbox.send("de", **(FORM | {"from": "a@b.org, c@d.org"})).status, 422)

    def test_takes_no_form_of_others_and_no_body_that_is_too_large(self):
        kept = len(list((self.mailbox.path / "Maildir").glob("*/*")))
        for token in ("", "0" * 32):
            self.assertEqual(self.mailbox.send("en", **(FORM | {"token": token})).status, 403)
        self.assertEqual(self.mailbox.send("en", **(FORM | {"text": "x" * (10 << 20)})).status, 413)
        for body in (b"", b"token=" + b"%00" * 99, b"a&" * 99999, b"--x\r\n" * 999):
            for kind in ("multipart/form-data; boundary=x", "application/x-www-form-urlencoded", "text/plain"):
                self.assertIn(self.mailbox.ask("/send", method="POST", body=body, Content_Type=kind).status, (403, 413))
        self.assertEqual(self.mailbox.ask("/", method="POST", body="").status, 405)
        self.assertEqual(self.mailbox.ask("/", Host="attacker.example:80").status, 421)
        self.assertEqual(len(list((self.mailbox.path / "Maildir").glob("*/*"))), kept)

    def test_opens_nothing_but_letters(self):
        secret = self.mailbox.path / "secret"
        secret.write_text("Subject: secret\n\nsecret")
        (self.mailbox.path / "Maildir" / "new" / "link").symlink_to(secret)
        names = ["../../secret", "../secret", "link", str(secret), "new/link", "..", ".", "", "%2e%2e%2fsecret", "a\0b"]
        for path in ("letter", "source", "part"):
            for name in names:
                answer = self.mailbox.ask(f"/{path}?number=0&name=" + urllib.parse.quote(name, safe=""))
                self.assertEqual(answer.status, 404, name)
        for path in ("/../secret", "/%2e%2e/secret", "/style.css/..", "/cur/", "/letter", "//x.example/"):
            answer = self.mailbox.ask(path)
            self.assertEqual((answer.status, dict(answer.elements)["form"]), (404, {"action": "/"}), path)

    def test_shows_hostile_messages_as_text(self):
        messages = dict(corpus_messages())
        messages["hostile"] = (f"From: {HOSTILE} <a@b.org>\nSubject: {HOSTILE}\nDate: {HOSTILE}\nCc: {HOSTILE}\n"
                               f"Content-Type: text/html\n\n{HOSTILE}").encode()
        messages["groups"] = b"To: " + b"a:" * 99999 + b"\n\n"
        messages["deep"] = b"".join(b"Content-Type: multipart/mixed; boundary=%d\n\n--%d\n" % (n, n) for n in range(9999))
        messages["many"] = b"Content-Type: multipart/mixed; boundary=b\n\n" + b"--b\n\nx\n" * 9999
        messages["controls"] = b"Subject: =?utf-8?Q?=00=1B$B=C2=85=7F=0D=0AX?=\nDate: 1 Jan 9999 00:00:00 +0000\n\n\x1b$B\x00"
        for name, message in messages.items():
            self.mailbox.put(name, message)
        for path in ["/?page=1", "/?sort=subject", "/?sort=sender&page=2", "/?page=-1", "/?page=99999999999999999999"]:
            self.assertEqual(self.mailbox.ask(path, "ja").status, 200)
        for number, name in enumerate(messages):
            page = self.mailbox.ask("/letter?name=" + urllib.parse.quote(name), ("ja", "de", "yi")[number % 3])
            self.assertEqual(page.status, 200, name)
            self.assertLessEqual({tag for tag, _ in page.elements}, PAGE, name)
            self.assertEqual([a for tag, a in page.elements if tag == "script"], [{"src": "/zone.js", "defer": None}])
            self.assertFalse([a for _, attributes in page.elements for a in attributes if a.startswith("on")], name)
            for link in page.links[2:]:
                self.assertEqual(self.mailbox.ask(link).status, 200, link)
        page = self.mailbox.ask("/letter?name=hostile")
        self.assertEqual((page.texts["h1"], page.texts["pre"]), ([HOSTILE], ["\n" + HOSTILE]))

    def test_guards_every_answer(self):
        answers = [self.mailbox.ask(path) for path in ("/", "/write", "/style.css", "/none")]
        tmp = self.mailbox.path / "Maildir" / "tmp"
        tmp.rmdir()
        answers.append(self.mailbox.send("en", **FORM))
        tmp.mkdir()
        self.assertEqual(answers[-1].status, 500)
        self.assertNotIn("tmp", answers[-1].text)
        for answer in answers:
            self.assertTrue(answer.headers["Content-Security-Policy"].startswith("default-src 'none'; "))
            self.assertEqual(answer.headers["X-Content-Type-Options"], "nosniff")
            self.assertEqual(answer.headers["Cache-Control"], "no-store")
        for headers in ({"Sec_Fetch_Site": "cross-site"}, {"Host": "attacker.example"}):
            self.assertNotIn("Set-Cookie", self.mailbox.ask("/?language=ar", **headers).headers)

    def test_answers_nobody_whom_an_encoded_word_names(self):
        rows = {"=?utf-8?Q?evil=40x.org=2C?= <boss@b.org>": '"evil@x.org," <boss@b.org>',
                "=?utf-8?Q?=3Cevil=40x.org=3E=2C_Boss?=\n <boss@b.org>": '"<evil@x.org>, Boss" <boss@b.org>',
                "=?utf-8?Q?=22=5C=2C_evil=40x.org?= <boss@b.org>": '"\\"\\\\, evil@x.org" <boss@b.org>',
                "[news] =?utf-8?Q?evil=40x.org=2C?= <boss@b.org>": '"[news] evil@x.org," <boss@b.org>',
                '"a < b" <boss@b.org>': '"a < b" <boss@b.org>', "=?utf-8?Q?J=C3=BCrgen?= <boss@b.org>": "Jürgen <boss@b.org>"}
        for number, (value, shown) in enumerate(rows.items()):
            for field in ("From: c@d.org\nReply-To", "From"):
                name = f"boss{number}{len(field)}"
                self.mailbox.put(name, f"{field}: {value}\nTo: =?utf-8?Q?a=2C?= <me@b.org>, you@b.org\n\n".encode())
                form = self.mailbox.ask(f"/write?answer={name}").fields
                self.assertEqual((form["to"], form["from"]), (shown, '"a," <me@b.org>'))
                answer = self.source(self.sent("de", **(form | {"text": "t"})))
                self.assertEqual([address.addr_spec for address in answer["to"].addresses], ["boss@b.org"])

    def test_shows_or_hands_out_all_of_a_letter(self):
        japanese = b"\n\n\x1b$B$\"\x1b(B"
        inner = b"From: in@b.org\nSubject: inner\n\ninside\n"
        long = "x" * ((1 << 20) - 1) + "ä"
        name = "ä" * 3000
        rows = {"bare": (b"Content-Type: text/plain" + japanese, ["\nあ"], []),
                "ascii": (b"Content-Type: text/plain; charset=US-ASCII" + japanese, ["\nあ"], []),
                "utf-8": (b"Content-Type: text/plain; charset=utf-8" + japanese, ["\n\uFFFD$B$\"\uFFFD(B"], []),
                "inner": (b"Content-Type: message/rfc822\n\n" + inner, ["\ninside\n"], [("message.eml", inner)]),
                "long": (f"Content-Type: text/plain; charset=utf-8\n\n{long}".encode(), ["\n" + long[:-1]],
                         [("0", long.encode())]),
                "name": (f"Content-Type: image/x; name*=utf-8''{urllib.parse.quote(name)}\n\nx".encode(), [],
                         [(name[:100], b"x")])}
        for letter, (message, texts, files) in rows.items():
            with self.subTest(letter):
                self.mailbox.put(letter, b"Subject: s\n" + message)
                page = self.mailbox.ask(f"/letter?name={letter}")
                self.assertEqual(page.texts.get("pre", []), texts)
                links = [self.mailbox.ask(link) for link in page.links if link.startswith("/part")]
                self.assertEqual([link.bytes for link in links], [file for _, file in files])
                self.assertEqual([link.headers["Content-Disposition"] for link in links],
                                 ["attachment; filename*=UTF-8''" + urllib.parse.quote(file) for file, _ in files])
        self.assertEqual(self.mailbox.ask(self.sent("de", subject="a\0b")).texts["h1"], ["a b"])

    def test_keeps_letters_of_one_name_apart(self):
        for flags in ("", "S"):
            (self.mailbox.path / "Maildir" / "cur" / f"twin:2,{flags}").write_bytes(b"Subject: twin\n\n")
        for _ in range(3):
            self.assertEqual(self.mailbox.ask("/letter?name=twin").status, 200)
            self.mailbox.ask("/")
        self.assertEqual(len(list((self.mailbox.path / "Maildir" / "cur").glob("twin*"))), 2)

    def test_listens_only_where_it_is_told(self):
        for place in ("localhost:8025", "127.0.0.1:65536", "127.0.0.1:x", "127.0.0.1:1x", "127.0.0.1", "", ":"):
            ended = subprocess.run([PROGRAM, "--maildir", self.mailbox.path / "none", "--listen", place], stderr=subprocess.PIPE)
            self.assertEqual((ended.returncode, ended.stderr[:6]), (2, b"usage:"), place)

    def test_serves_many_letters_to_many_clients(self):
        with Mailbox(PROGRAM) as mailbox:
            for number in range(10000):
                mailbox.put(f"n{number}", f"From: =?utf-8?Q?=C3=A4?= <{number}@b.org>\nSubject: {number}\n\n".encode(), True)
            mailbox.ask("/")
            start = time.monotonic()
            self.assertEqual(mailbox.ask("/?sort=subject&page=200").texts["span"], ["200 / 200"])
            self.assertLess(time.monotonic() - start, 5)

            def use(number):
                while time.monotonic() < start + 2:
                    for path, title in ((f"/letter?name=n{number}", f"{number}"), ("/", "Inbox"), ("/none", "Nothing is here")):
                        self.assertEqual(mailbox.ask(path).texts["h1"], [title])
            start = time.monotonic()
            with concurrent.futures.ThreadPoolExecutor(8) as clients:
                list(clients.map(use, range(8)))

    def test_takes_the_language_that_its_reader_likes_best(self):
        for accepted, language in {"de-AT, en": "de", "xx": "en", "zh-Hant-HK": "zh-TW"}.items():
            self.assertEqual(self.mailbox.ask("/", accepted).elements[0][1]["lang"], language)
        page = self.mailbox.ask("/?language=ar", "ja", Cookie="language=de")
        self.assertEqual((page.elements[0][1], page.charset), ({"lang": "ar", "dir": "rtl"}, "iso-8859-6"))
        self.assertIn("language=ar;", page.headers["Set-Cookie"])
        self.assertEqual(self.mailbox.ask("/", "ja", Cookie="language=de; zone=Asia/Tokyo").charset, "iso-8859-1")

    def test_follows_no_bundle_to_a_charset_without_ascii(self):
        with tempfile.TemporaryDirectory() as root:
            source = pathlib.Path(root, "bundle.txt")
            source.write_text("http|de = utf-16\nhttp|fr = utf-7\nhttp|ko = iso-2022-kr\nhttp|ja = euc-jp\n")
            subprocess.run([COMPILER, source, root], check=True)
            with Mailbox(PROGRAM, root) as mailbox:
                charsets = [mailbox.ask("/", language).charset for language in ("de", "fr", "ko", "ja")]
        self.assertEqual(charsets, ["utf-8", "utf-8", "utf-8", "euc-jp"])


unittest.main()
