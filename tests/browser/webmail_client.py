"""The web mailbox, serving a Maildir of its own on a free port, and what its tests ask of it."""

import html.parser
import http.client
import os
import pathlib
import re
import subprocess
import tempfile
import urllib.parse
import uuid

ROOT = pathlib.Path(__file__).parents[2]


class Mailbox:
    def __init__(self, program, bundles=None):
        self.directory = tempfile.TemporaryDirectory()
        self.path = pathlib.Path(self.directory.name)
        command = [program, "--maildir", self.path / "Maildir", "--listen", "127.0.0.1:0"]
        # GLib's own pools of memory look like races to the thread sanitizer, which does not see their locks.
        environment = {**os.environ, "G_SLICE": "always-malloc", **({"ZEL_BUNDLES": str(bundles)} if bundles else {})}
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE, text=True, env=environment)
        self.url = self.process.stdout.readline().split()[0]
        self.port = urllib.parse.urlsplit(self.url).port
        self.process.stdout.readline()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        code = self.process.wait(30)
        self.process.stdout.close()
        self.directory.cleanup()
        assert code == 0, f"the mailbox ended with {code}"

    def put(self, name, message, is_seen=False):
        (self.path / "Maildir" / (f"cur/{name}:2,S" if is_seen else f"new/{name}")).write_bytes(message)

    def ask(self, path, language="en", method="GET", body=None, **headers):
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=60)
        headers = {"Accept-Language": language} | {name.replace("_", "-"): value for name, value in headers.items()}
        connection.request(method, path, body, headers)
        answer = Answer(connection.getresponse())
        connection.close()
        return answer

    def send(self, language, file=None, **fields):
        token = self.ask("/write").fields["token"]
        boundary = uuid.uuid4().hex
        parts = [(f'name="{name}"', value.encode()) for name, value in ({"token": token} | fields).items()]
        parts += [(f'name="file"; filename="{file[0]}"\r\nContent-Type: text/html', file[1])] if file else []
        body = b"".join(f"--{boundary}\r\nContent-Disposition: form-data; {head}\r\n\r\n".encode() + content + b"\r\n"
                        for head, content in parts)
        return self.ask("/send", language, "POST", body + f"--{boundary}--\r\n".encode(),
                        Content_Type=f"multipart/form-data; boundary={boundary}")


class Answer(html.parser.HTMLParser):
    """An answer, and of a page its elements, its texts by the element around them, and the fields of its form."""

    VOID = {"input", "meta", "link"}

    def __init__(self, response):
        super().__init__(convert_charrefs=True)
        self.status, self.headers, self.bytes = response.status, response.headers, response.read()
        self.open, self.elements, self.texts, self.fields, self.links = [], [], {}, {}, []
        self.charset = response.headers.get_content_charset()
        if response.headers.get_content_type() == "text/html":
            self.text = self.bytes.decode({"shift_jis": "cp932", "euc-kr": "cp949", "gb2312": "gb18030"}.get(
                self.charset.lower(), self.charset))
            self.feed(self.text)

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        self.elements.append((tag, attributes))
        self.texts.setdefault(tag, []).append("")
        if tag not in self.VOID:
            self.open.append(tag)
        if tag == "input":
            self.fields[attributes.get("name")] = attributes.get("value", "")
        if tag == "a":
            self.links.append(attributes["href"])

    def handle_endtag(self, tag):
        assert self.open.pop() == tag, f"{tag} ends where it did not begin"

    def handle_data(self, data):
        for tag in set(self.open):
            self.texts[tag][-1] += data


def corpus_messages():
    """The fuzz corpora of headers, parameters and bodies, as messages; by names of their own."""
    for file in sorted((ROOT / "fuzz" / "corpus").glob("*/*")):
        text = file.read_bytes()
        line = re.sub(rb"\r?\n(?![ \t])|\r(?!\n)", b" ", text)
        name = f"{file.parent.name}-{file.name}"
        yield f"{name}-header", b"From: " + line + b" <a@example.org>\nSubject: " + line + b"\n\n" + text
        yield f"{name}-type", b"Subject: type\nContent-Type: text/plain; charset=\"" + line + b"\"\n\n" + text
        yield f"{name}-file", (b"Subject: file\nContent-Type: application/x; name*=" + line
                               + b"\nContent-Disposition: attachment; filename=\"" + line + b"\"\n\n" + text)
        yield f"{name}-raw", text
        for charset in ("iso-2022-jp", "utf-16", "hz-gb-2312", "gb2312", "utf-7"):
            yield f"{name}-{charset}", f"Subject: body\nContent-Type: text/html; charset={charset}\n\n".encode() + text


HOSTILE = "</pre></title></textarea></bdi>\"'><script>document.title='run'</script><img src=x onerror=\"document.title='run'\">"
