"""The manual, the man pages and the programs say the same: texts of the code, options, pages, examples."""
import os
import re
import subprocess
import tempfile
import unittest

SOURCE = os.environ["KALIVOR_SOURCE"]
PROGRAMS = {name: os.environ[name.upper().replace("-", "_")] for name in ("kalivor", "kalivor-cli", "kalivor-sim")}
MANUAL = os.path.join(SOURCE, "docs/handbuch")

# Texts of the code that no user reads as a sentence: titles, captions and columns.
NOT_IN_THE_MANUAL = {
    "Edit Parameter", "Parameter Editieren", "Suchen in der Hilfe...", "Standardwert übernehmen",
    "Lucida Console", "MS Sans Serif", "Die KALIVOR-Autoren", "Parametrierung von Reglern",
}
# Files whose texts are not messages.
NO_MESSAGES = re.compile(
    r"DemoHistory|Registry|SystemInformation|PageTexts|PrintList|TreeTexts|PagesText|Resources|FileDialogs|COM_T_frm\.h")
# What is said to a database.
SQL = re.compile(
    r"\b(SELECT|PRAGMA|CREATE|INSERT|REVOKE|REFERENCES|WHERE|ORDER BY|ON CONFLICT|NOT NULL|GRANT USAGE|FROM PUBLIC|BEGIN|search_path)\b"
    r"|^[ ,]*[a-z_]+\.[a-z_]+, |^[a-z_]+ \([a-z, _]+\)|^[a-z]+, [a-z]+$|none of them|kalivor_history$")


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def files(folder, *endings):
    for place, _, names in os.walk(os.path.join(SOURCE, folder)):
        yield from (os.path.join(place, name) for name in sorted(names) if name.endswith(endings))


def literals(code):
    """The string literals of C++ code; neighbours are one. Raw ones, the help texts, have tests of their own."""
    code = re.sub(r"(?m)^\s*(//|#include).*$", "", code)
    code = re.sub(r'R"\(.*?\)"', '""', code, flags=re.S)
    # A quotation mark as a character opens no text.
    code = re.sub(r"'(?:[^'\\\n]|\\.)'", "' '", code)
    pieces = r'u?"((?:[^"\\\n]|\\.)*)"(?:_s)?'
    for neighbours in re.finditer(rf"{pieces}(?:\s*{pieces})*", code):
        yield "".join(re.findall(pieces, neighbours.group()))


def fragments(literal):
    """What of a text has to be found: between its places for values and its line breaks."""
    text = literal.replace('\\"', '"').replace("\\\\", "\\")
    for fragment in re.split(r"%\d|\\[nrt]", text):
        yield " ".join(fragment.split()).removesuffix(" |")


def is_sentence(text):
    """At least two words, one of them German enough; no format of a date."""
    if re.fullmatch(r"[dMyHms.: -]+", text):
        return False
    return bool(re.search(r"[a-zäöüß]{2,}[^\w\s]*\s+\W*\w", text)) and not re.search(r"[<>{}/]|\*\.|::", text.replace("->", ""))


def plain(text):
    """The manual as its reader sees it."""
    return " ".join(text.replace("`+", "").replace("+`", "").split())


class Manual(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.chapters = {os.path.basename(path): read(path) for path in files("docs/handbuch", ".adoc")}
        self.text = plain("\n".join(self.chapters.values()))

    def test_has_every_message_of_the_programs(self):
        missing = []
        found = 0
        for path in files("src", ".cpp", ".h"):
            if NO_MESSAGES.search(path):
                continue
            code = read(path)
            if path.endswith("kalivor/Arguments.cpp"):
                code = code.replace(code[code.index("kHelp =") : code.index("}  // namespace")], "")
            for literal in literals(code):
                if not is_sentence(literal.replace("&", "")) or SQL.search(literal):
                    continue
                for fragment in fragments(literal.replace("&", "")):
                    found += 1
                    if fragment in self.text or fragment in NOT_IN_THE_MANUAL:
                        continue
                    missing.append(f"{os.path.relpath(path, SOURCE)}: {fragment}")
        self.assertEqual(missing, [])
        # That the search finds something at all.
        self.assertGreater(found, 200)

    def test_has_the_pages_and_places_that_f1_opens(self):
        code = read(os.path.join(SOURCE, "src/ui/main/HelpKey.cpp"))
        pages = set(re.findall(r'u"([a-z]+(?:#[a-z]+)?)"', code)) - {"optionen"}
        pages |= {"optionen" + place for place in re.findall(r'u"(#[a-z]+)"', code)}
        self.assertGreater(len(pages), 10)
        for page in pages:
            chapter, _, place = page.partition("#")
            self.assertIn(f"{chapter}.adoc", self.chapters)
            if place:
                self.assertIn(f"[#{place}]\n", self.chapters[f"{chapter}.adoc"])

    def test_links_lead_somewhere(self):
        links = [
            (chapter, *link)
            for chapter, text in self.chapters.items()
            for link in re.findall(r"xref:([a-z]+\.adoc)#([a-z0-9-]+)\[", text)
        ]
        self.assertGreater(len(links), 30)
        for chapter, target, place in links:
            self.assertIn(f"[#{place}]\n", self.chapters.get(target, ""), f"{chapter} to {target}#{place}")

    def test_names_no_place_twice(self):
        """The book has all chapters in one."""
        places = [(place, chapter) for chapter, text in self.chapters.items()
                  for place in re.findall(r"(?m)^\[#([^\]]+)\]$", text)]
        self.assertGreater(len(places), 50)
        chapters = {}
        for place, chapter in places:
            self.assertNotIn(place, chapters, f"{chapter} and {chapters.get(place)}")
            chapters[place] = chapter

    def test_binds_every_chapter_into_the_book_and_the_index(self):
        for chapter in set(self.chapters) - {"index.adoc", "handbuch.adoc", "gemeinsam.adoc"}:
            self.assertIn(f"include::{chapter}[", self.chapters["handbuch.adoc"])
            self.assertIn(f"xref:{chapter}#", self.chapters["index.adoc"])

    def test_shows_definitions_without_faults(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in os.listdir(os.path.join(MANUAL, "beispiel")):
                with open(os.path.join(folder, name), "w", encoding="cp1252", newline="\r\n") as file:
                    file.write(read(os.path.join(MANUAL, "beispiel", name)))
            check = [PROGRAMS["kalivor-cli"], "--ini-path", folder, "check-definitions"]
            self.assertEqual(subprocess.run(check, check=True, capture_output=True).stdout, b"")

    def test_shows_a_controller_that_works(self):
        with subprocess.Popen(
            ["/usr/bin/python3", os.path.join(MANUAL, "regler.py")], stdout=subprocess.PIPE, text=True
        ) as controller:
            try:
                device = controller.stdout.readline().strip()
                ask = [PROGRAMS["kalivor-cli"], "--ini-path", os.path.join(SOURCE, "examples"), "--port", device]
                self.assertEqual(subprocess.check_output([*ask, "identify"], text=True), "HZL-012.0\n")
                one = ["--set", "_Hk1RaumSollTag=22.5", "--uncheck", "all", "--check", "_Hk1RaumSollTag"]
                subprocess.run([*ask, *one, "send"], check=True, stdout=subprocess.DEVNULL)
                subprocess.run([*ask, *one, "compare"], check=True, stdout=subprocess.DEVNULL)
            finally:
                controller.terminate()


class ManPages(unittest.TestCase):
    @staticmethod
    def help_of(name, *command):
        environment = {key: value for key, value in os.environ.items() if key not in ("DISPLAY", "WAYLAND_DISPLAY")}
        return subprocess.check_output([PROGRAMS[name], *command, "--help"], text=True, env=environment)

    def test_name_the_options_of_help(self):
        for name in PROGRAMS:
            page = read(os.path.join(SOURCE, "docs/man", name + ".1")).replace("\\-", "-")
            described = set(re.findall(r"(?m)^\.TP\n\.BR? (--[a-z-]+)", page))
            said = self.help_of(name)
            if name == "kalivor-cli":
                said += self.help_of(name, "history")
            self.assertEqual(described, set(re.findall(r"(?m)^  (--[a-z-]+)", said)), name)

    def test_name_the_commands_of_help(self):
        page = read(os.path.join(SOURCE, "docs/man/kalivor-cli.1")).replace("\\-", "-")
        commands = page[page.index(".SH BEFEHLE") : page.index(".SH OPTIONEN")]
        described = set(re.findall(r"(?m)^\.TP\n\.BR? ([a-z-]+)", commands))
        text = self.help_of("kalivor-cli")
        offered = set(re.findall(r"(?m)^  ([a-z-]+) ", text[text.index("Befehle:") : text.index("Optionen")]))
        self.assertGreater(len(offered), 10)
        self.assertEqual(described, offered)

    def test_name_the_commands_of_the_history(self):
        page = read(os.path.join(SOURCE, "docs/man/kalivor-cli.1"))
        described = set(re.findall(r'(?m)^\.TP\n\.BI? "?history ([a-z-]+)', page.replace("\\-", "-")))
        text = self.help_of("kalivor-cli", "history")
        offered = set(re.findall(r"(?m)^  ([a-z-]+) ", text[text.index("Befehle:") : text.index("Optionen")]))
        self.assertEqual(described, offered)

    def test_name_the_version(self):
        for name, program in PROGRAMS.items():
            said = subprocess.check_output([program, "--program-version"], text=True).strip()
            self.assertEqual(said, f"{name} {os.environ['KALIVOR_VERSION']}")
            page = read(os.path.join(SOURCE, "docs/man", name + ".1"))
            self.assertIn(f'"KALIVOR {os.environ["KALIVOR_VERSION"]}"', page)


if __name__ == "__main__":
    unittest.main()
