"""The program zel as its users meet it: rows of arguments, input, output, messages and exit code, and files that are
longer than a chunk beside Python's codecs.
usage: program_test.py PROGRAM VERSION BUNDLES SOURCE_DIRECTORY [with_more_memory]"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

from letters import SAMPLES

PROGRAM, VERSION, BUNDLES, SOURCES, *WITH_MORE_MEMORY = sys.argv[1:]
del sys.argv[1:]
COMPLETION = SOURCES + "/tools/zel/completion.bash"
TEXTS = sorted(pathlib.Path(SOURCES, "examples/texts").glob("*.txt"))
ENVIRONMENT = {**os.environ, "LC_ALL": "en_US.UTF-8", "ZEL_BUNDLES": BUNDLES}

COMMANDS = """convert repair decode-header encode-header decode-parameter encode-parameter decode-body encode-body
decode-mailbox encode-mailbox vcard date sort languages""".split()


def zel(*arguments, given=b""):
    ran = subprocess.run([PROGRAM, *arguments], input=given, capture_output=True, env=ENVIRONMENT)
    return ran.stdout, ran.stderr.decode(), ran.returncode


def convert(source, target, given):
    return zel("convert", "-f", source, "-t", target, given=given)


class Table(unittest.TestCase):
    def check(self, rows):
        for arguments, given, *expected in rows:
            with self.subTest(arguments=arguments, given=given):
                given, wanted = (text.encode() if isinstance(text, str) else text for text in (given, expected[0]))
                told = "".join(f"zel: {line}\n" for line in expected[1:])
                self.assertEqual(zel(*arguments, given=given), (wanted, told, 1 if told else 0))


class Commands(Table):
    def test_do_their_work_and_tell_what_is_lost(self):
        sale = "=?iso-8859-15?Q?10_=A4?="
        name = "relevé détaillé de la réservation à Besançon pour l'été 2024.txt"
        parts = zel("encode-parameter", "-l", "fr", "filename", name)[0]
        self.assertIn(b";\n filename*1*=", parts)
        lines = "Zebra\nÄpfel\nApfel\nÜbung\n"
        headers = "=?utf-8?Q?=C3=84b?=\nZ\n=?koi8-r?Q?=E1?=\nb\n c\n"
        self.check([
            (["decode-header", "Re: =?utf-8?Q?Gr=C3?= =?utf-8?Q?=BC=C3=9Fe?=", "", "[b] {}"], "", "Re: Grüße\n\n[b] {}\n"),
            (["decode-header"], "=?big5?B?pKSk5Q==?=\r\n =?big5?B?pKSk5Q==?=\r\n\tx\nplain\n", "中文中文\tx\nplain\n"),
            (["decode-header"], "=?utf-8?Q?a=0Ab=1B[m=C2=9B=09c?=\n", "a b [m \tc\n"),
            (["decode-header", "=?\x1b?Q?=E9?="], "", "=? ?Q?=E9?=\n", "argument 1: an encoded word in ? cannot be read"),
            (["decode-header", "-t", "iso-8859-1", sale], "", b"10 \x1a\n", "argument 1: U+20AC is not in iso-8859-1"),
            (["decode-header", "-l", "fr", sale], "", "10_=A4\n", "argument 1: iso-8859-15 is not admitted for fr"),
            (["decode-header"], "a\n=?x?Q?=E9?=\nb\n", "a\n=?x?Q?=E9?=\nb\n",
             "-: line 2: an encoded word in x cannot be read"),
            (["decode-header", "=?utf-8?Q?=E9?="], "", "\ufffd\n", "argument 1: characters that cannot be read"),
            (["encode-header", "Grüße"], "", "=?utf-8?B?R3LDvMOfZQ==?=\n"),
            (["encode-header", "-l", "de"], "Grüße\n  und mehr\n", "=?iso-8859-15?Q?Gr=FC=DFe__und_mehr?=\n"),
            (["encode-header", "-l", "ja", "件😀"], "", "=?iso-2022-jp?B?GyRCN28bKEIa?=\n",
             "argument 1: U+1F600 is not in iso-2022-jp"),
            (["encode-header", "a\nBcc: x"], "", "a Bcc: x\n"),
            (["encode-header"], b"\xff\nb\n", "b\n", "-: line 1: a text that is not UTF-8"),
            (["decode-parameter"], b"attachment; " + parts, name + "\n"),
            (["decode-parameter", "utf-8''%e2%82%ac"], "", "€\n"),
            (["decode-parameter", 'text/plain; charset="x y"; name="=?utf-8?Q?=C3=A9?="'], "", "x y\né\n"),
            (["encode-parameter", "-l", "en", "a b", "x"], "", "", "argument 1: a name that no parameter has"),
            (["decode-body", "-c", "iso-2022-jp"], b"\x1b$B7o\x1b(B\n", "件\n"),
            (["decode-body", "-c", "euc-jp", "-l", "ja", "-t", "Shift_JIS"], "件".encode("euc-jp"), "件".encode("sjis")),
            (["decode-body", "-c", "utf-8"], b"a\xe9", "a\ufffd", "-: byte 1: not utf-8"),
            (["encode-body", "-l", "de"], "Grüße\nan alle\n",
             "Content-Type: text/plain; charset=iso-8859-15\nContent-Transfer-Encoding: quoted-printable\n\n"
             "Gr=FC=DFe\nan alle\n"),
            (["decode-mailbox", "Entw&APw-rfe", "A&-B"], "", "Entwürfe\nA&B\n"),
            (["decode-mailbox", "a&b"], "", "a\ufffd\ufffd\n", "argument 1: not the form that a mailbox has on the wire"),
            (["encode-mailbox"], "Entwürfe\n A&B\n", "Entw&APw-rfe\n A&-B\n"),
            (["vcard", "-l", "cs", "kůň"], "", "k=F9=F2\n"),
            (["vcard", "-l", "de", "10 €"], "", "10 =1A\n", "argument 1: U+20AC is not in iso-8859-1"),
            (["date", "-l", "ja", "-z", "Asia/Tokyo", "1719450900"], "", "2024年6月27日木曜日 10:15:00 JST\n"),
            (["date", "-l", "de", "-z", "Asia/Tokyo", "-t", "utf-16be", "--", "-2", "-1"], "",
             "".join(f"Donnerstag, 1. Januar 1970 um 08:59:5{n} GMT+9\n" for n in (8, 9)).encode("utf-16be")),
            (["date", "-l", "ja", "-z", "Asia/Tokyo", "-t", "us-ascii", "--", "-2"], "",
             "1970\x1a1\x1a1\x1a\x1a\x1a\x1a 8:59:58 GMT+9\n", "-2: U+5E74 is not in us-ascii"),
            (["sort", "-l", "de"], lines, "Apfel\nÄpfel\nÜbung\nZebra\n"),
            (["sort", "-l", "sv", "-c", "iso-8859-1"], lines.encode("latin-1"),
             "Apfel\nÜbung\nZebra\nÄpfel\n".encode("latin-1")),
            (["sort", "--headers"], headers, "=?utf-8?Q?=C3=84b?=\nb\n c\nZ\n=?koi8-r?Q?=E1?=\n"),
            (["sort"], b"b\0z\na\n", b"a\nb\0z\n", "-: line 1: sorted by what stands before its NUL"),
            (["repair", "-c", "euc-jp"], b"\xa4\xa2\xa4\0\xa4x", b"\xa4\xa2?\0?x"),
        ])

    def test_fold_headers_for_the_wire_and_read_them_back(self):
        text = ("ein langer Betreff mit Umlauten wie äöü und Zeichen wie 日本語 " * 5).strip()
        wires = [zel("encode-header", *language, text)[0] for language in ([], ["-l", "de"], ["-l", "ja"])]
        for wire in wires:
            self.assertRegex(wire, rb"\A[^\r\n]+(\n[ \t][^\r\n]+)+\n\Z")
        self.assertEqual(zel("decode-header", given=wires[0])[0].decode(), text + "\n")

    def test_list_the_languages(self):
        rows = [line.split() for line in zel("languages")[0].decode().splitlines()]
        self.assertEqual(sorted(row[0] for row in rows), sorted(language for language, *_ in SAMPLES))
        self.assertIn("ja iso-2022-jp Shift_JIS 7bit us-ascii iso-2022-jp utf-8 utf-7".split(), rows)
        self.assertIn("ru iso-8859-5 iso-8859-5 quoted-printable us-ascii iso-8859-5 utf-8 utf-7".split(), rows)


# Texts that Python and ICU read alike: dense, so that no chunk finds a place to end, and in lines.
CHARSETS = [
    ("UTF-8", "utf-8", "é日本😀"), ("UTF-16", "utf-16", "é日本😀"), ("UTF-16BE", "utf-16-be", "ऊੴ日😀"),
    ("UTF-32", "utf-32", "é日本😀"), ("UTF-7", "utf-7", "é日本😀a"), ("iso-8859-2", "iso8859-2", "łążść"),
    ("Shift_JIS", "shift_jis", "あいう漢字ｱ仮名"), ("euc-jp", "euc_jp", "あいう漢字ｱ仮名"),
    ("iso-2022-jp", "iso2022_jp", "あいう漢字仮名a"), ("gb2312", "gb2312", "汉字和字母"),
    ("gb18030", "gb18030", "汉字é和😀字"), ("big5", "big5", "漢字許功蓋"),
    ("euc-kr", "euc_kr", "한글글자"), ("iso-2022-kr", "iso2022_kr", "한글글자a"),
]
CHUNK = 256 * 1024


class Conversion(Table):
    def test_goes_on_from_chunk_to_chunk(self):
        for name, codec, letters in CHARSETS:
            lines = f"{letters * 9} a, b? (1)\n" * (CHUNK // 40)
            for text in letters * (CHUNK // 6), lines:
                with self.subTest(charset=name, text=text[-9:]):
                    wire, plain = text.encode(codec), text.encode()
                    self.assertEqual(convert(name, "UTF-8", wire), (plain, "", 0))
                    back = convert("UTF-8", name, plain)
                    self.assertEqual((back[0].decode(codec), *back[1:]), (text, "", 0))
                    self.assertEqual(convert(name, name, wire), (wire, "", 0))

    def test_brings_samples_there_and_back(self):
        self.assertEqual(len(TEXTS), 23)
        for path in TEXTS:
            with self.subTest(path.name):
                charset, wire = path.name.split(".")[1], path.read_bytes()
                plain, told, code = convert(charset, "UTF-8", wire)
                self.assertEqual((told, code, "\ufffd" in plain.decode()), ("", 0, False))
                self.assertEqual(convert("UTF-8", charset, plain), (wire, "", 0))

    def test_carries_states_and_marks(self):
        roman = b"\x1b(J" + b"\\\n" * CHUNK
        self.assertEqual(convert("iso-2022-jp", "UTF-8", roman), ("¥\n".encode() * CHUNK, "", 0))
        out = zel("convert", "-f", "UTF-8", "-t", "UTF-16", "-", "/dev/null", "-", given=b"x")[0]
        self.assertEqual(len(re.findall(b"\xff\xfe|\xfe\xff", out)), 1)  # in the byte order of the processor
        with tempfile.NamedTemporaryFile() as file:
            file.write("日\n".encode("utf-16-be") * CHUNK)
            file.flush()
            both = zel("convert", "-f", "UTF-16", "-t", "UTF-16BE", file.name, "-", given=b"\xff\xfe\x01\x02")
            self.assertEqual(both, ("日\n".encode("utf-16-be") * CHUNK + b"\x02\x01", "", 0))

    def test_stops_at_no_NUL_and_tells_what_is_lost_and_where(self):
        c = lambda source, target: ["convert", "-f", source, "-t", target]
        long = "a" * (CHUNK - 1) + "\n"
        self.check([
            (c("gb2312", "big5"), b"\xb9\xfa\0\0a\0", b"\xb0\xea\0\0a\0"),
            (c("UTF-8", "Shift_JIS"), b"a\0\xe6\x97\xa5\0", b"a\0\x93\xfa\0"),
            (c("UTF-8", "iso-8859-1"), long + "é€\n", (long + "é\x1a\n").encode("latin-1"),
             f"-: byte {CHUNK + 2}: U+20AC is not in iso-8859-1"),
            (c("UTF-8", "big5"), "a?\n" + long * 2 + "?é", "a?\n" + long * 2 + "??", f"-: byte {2 * CHUNK + 4}: U+00E9 is not in big5"),
            (c("UTF-8", "UTF-8"), b"\xe6\x97x\xff", b"\xe6\x97x\xff", "-: byte 0: not UTF-8", "-: byte 3: not UTF-8"),
            (c("Shift_JIS", "UTF-8"), b"\x7f\x93\xfa\x81\n", "\x1a日\x1a\n", "-: byte 3: not Shift_JIS"),
            (c("euc-kr", "UTF-16LE"), b"\xb0\xa1\xff", "가\x1a".encode("utf-16-le"), "-: byte 2: not euc-kr"),
            (c("UTF-16LE", "iso-8859-2"), "é\ufffdł".encode("utf-16-le"), b"\xe9\x1a\xb3",
             "-: byte 2: U+FFFD is not in iso-8859-2"),
            (c("UTF-16LE", "UTF-8"), "\ufffd".encode("utf-16-le") + b"\0\xd8a\0", "\ufffd\ufffda", "-: byte 2: not UTF-16LE"),
            (c("UTF-32BE", "UTF-8"), b"\0\0\0a\0\1\xf6\0\0\x11\0\0\0\0", "a😀\ufffd\ufffd", "-: byte 8: not UTF-32BE",
             "-: byte 12: not UTF-32BE"),
            (c("big5", "gb2312"), b"?\xa4\xa4\xc7\x40", b"?\xd6\xd0??", "-: byte 3: no counterpart in gb2312"),
            (c("us-ascii", "UTF-8"), b"\xe9" * 12, "\ufffd" * 12,
             *(f"-: byte {at}: not us-ascii" for at in range(10)), "-: and 2 more"),
        ])

    def test_takes_a_small_memory(self):
        with tempfile.TemporaryFile() as file:
            for _ in range(1000):  # as a child's memory is never less than its parent's was
                file.write("日本語のテキスト, plain text\n".encode() * 1000)
            file.seek(0)
            command = [PROGRAM, "convert", "-f", "UTF-8", "-t", "euc-jp"]
            ran = subprocess.Popen(command, stdin=file, stdout=subprocess.DEVNULL)
            _, status, usage = os.wait4(ran.pid, 0)
            ran.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(ran.returncode, 0)
        if not WITH_MORE_MEMORY:
            self.assertLess(usage.ru_maxrss, 64 * 1024)

    def test_refuses_what_cannot_be_read_in_pieces(self):
        with tempfile.NamedTemporaryFile() as file:
            file.truncate(3 << 30)  # which 32-bit machines see only if they are told to
            told = f"zel: {file.name}: has more than 64 MiB, which cannot be converted in pieces\n"
            self.assertEqual(zel("convert", "-f", "UTF-7", "-t", "UTF-8", file.name), (b"", told, 1))


class Failures(unittest.TestCase):
    def test_are_told_and_the_rest_goes_out(self):
        with tempfile.TemporaryDirectory() as directory:
            path = pathlib.Path(directory, "file")
            path.write_bytes(b"x")
            ran = zel("convert", "-f", "UTF-8", "-t", "UTF-16LE", directory + "/none", directory, str(path), "/dev/null")
        told = f"zel: {directory}/none: No such file or directory\nzel: {directory}: Is a directory\n"
        self.assertEqual(ran, (b"x\0", told, 1))
        root = os.open("/", os.O_RDONLY)
        ran = subprocess.run([PROGRAM, "decode-header"], stdin=root, capture_output=True)
        os.close(root)
        self.assertEqual((ran.stderr, ran.returncode), (b"zel: -: Is a directory\n", 1))

    def test_of_output_end_the_program(self):
        for command in ["languages"], ["convert", "-f", "UTF-8", "-t", "UTF-16", COMPLETION]:
            with open("/dev/full", "wb") as full:
                ran = subprocess.run([PROGRAM, *command], stdout=full, stderr=subprocess.PIPE, env=ENVIRONMENT)
            self.assertEqual((ran.stderr, ran.returncode), (b"zel: standard output: No space left on device\n", 1))
            for restore in True, False:
                out, sink = os.pipe()
                os.close(out)
                ran = subprocess.run([PROGRAM, *command], stdout=sink, stderr=subprocess.PIPE, restore_signals=restore)
                os.close(sink)
                self.assertEqual(ran.stderr, b"")
                self.assertNotEqual(ran.returncode, 0)

    def test_of_use_are_2(self):
        for line in [
            "", "bogus", "convert", "convert -f UTF-8", "convert -f none -t UTF-8", "convert -f UTF-8 -t",
            "decode-header -l xx", "decode-header -t none x", "encode-body", "encode-parameter -l de", "date x",
            "date 99999999999", "sort x", "languages x", "repair -c none", "vcard x", "date --bogus",
        ]:
            with self.subTest(line):
                out, told, code = zel(*line.split())
                self.assertEqual((out, code), (b"", 2))
                self.assertRegex(told, r"\Azel: .+\nzel -h and zel COMMAND -h tell more\.\n\Z")


class Documents(unittest.TestCase):
    def test_show_what_the_program_does(self):
        readme = pathlib.Path(SOURCES, "README.md").read_text()
        shown = re.findall(r"^    \$ zel (.*)\n    ([^$\n].*)$", readme, re.M)
        self.assertEqual(len(shown), 3)
        for command, output in shown:
            ran = subprocess.run(f"{PROGRAM} {command}", shell=True, cwd=SOURCES, capture_output=True, env=ENVIRONMENT)
            self.assertEqual(ran.stdout.decode(), output + "\n")

    def test_name_every_command_and_option(self):
        manual = pathlib.Path(SOURCES, "docs/zel.1").read_text().replace("\\-", "-")
        for command in COMMANDS:
            self.assertRegex(manual.split(".SH COMMANDS")[1], rf"\.BR? .*\b{command}\b")
            for option in re.findall(r"^  (-\w)", zel(command, "-h")[0].decode(), re.M):
                self.assertRegex(manual, rf"\\fBzel {command}\\?.*{option}" if option != "-h" else ".BR -h")


class Help(unittest.TestCase):
    def test_is_everywhere(self):
        for command in [], *([name] for name in COMMANDS):
            helps = [zel(*command, option) for option in ("-h", "--help")]
            self.assertEqual(helps[0], helps[1])
            self.assertEqual(helps[0][1:], ("", 0))
            self.assertIn(" ".join(["zel", *command, "[OPTIONS]"]).encode(), helps[0][0])
            self.assertEqual(zel(*command, "--version"), (f"zel {VERSION}\n".encode(), "", 0))

    def test_completes(self):
        script = f'PATH={os.path.dirname(PROGRAM)}:$PATH; source {COMPLETION}; COMP_WORDS=("${{@:2}}"); COMP_CWORD=$(($# - 2)); _zel; echo "${{COMPREPLY[*]}}"'
        for words, expected in [
            ("decode-h", "decode-header"), ("convert -f Shift", "Shift_JIS"), ("sort --he", "--headers --help"),
            ("vcard -l zh-", "zh-CN zh-TW"), (f"convert {COMPLETION[:-1]}", COMPLETION),
        ]:
            ran = subprocess.run(["bash", "-c", script, "bash", "x", "zel", *words.split()], capture_output=True, text=True)
            self.assertEqual((ran.stdout.strip(), ran.stderr), (expected, ""))
        offered = subprocess.run(["bash", "-c", script, "bash", "x", "zel", ""], capture_output=True, text=True).stdout.split()
        listed = re.findall(r"^  ([a-z-]+) ", re.split("subcommands:", zel("-h")[0].decode(), flags=re.I)[1], re.M)
        self.assertEqual(offered, [*listed, "-h", "--help", "--version"])
        self.assertEqual(listed, COMMANDS)


if __name__ == "__main__":
    unittest.main()
