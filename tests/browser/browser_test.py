"""The web mailbox in Chromium, as readers of seven languages meet it. Takes pictures of their lists where a directory is
named. It runs with Debian's python3, which has python3-selenium and python3-icu.
usage: browser_test.py WEBMAIL [DIRECTORY-OF-PICTURES]"""

import os
import pathlib
import shutil
import sys
import unittest

import icu
from selenium import webdriver
from selenium.webdriver.common.by import By
from selenium.webdriver.support.ui import Select, WebDriverWait

from webmail_client import HOSTILE, ROOT, Mailbox

PICTURES = pathlib.Path(sys.argv.pop()) if len(sys.argv) > 2 else None
PROGRAM = sys.argv.pop()

# What each writes, and the time of one letter as it is shown.
READERS = {
    "de": ("Größere Äpfel für „Köln“ – 5 € 🙂", "Europe/Berlin", "27. Juni 2024 um 11:40:11"),
    "ja": ("お疲れさまです。①髙島屋～〜 ｶﾅ 🙂", "Asia/Tokyo", "2024年6月27日木曜日 18:40:11"),
    "ko": ("안녕하세요, 똠방각하 ㈜ 🙂", "Asia/Seoul", "2024년 6월 27일 목요일 오후 6시 40분 11초"),
    "zh-TW": ("許功蓋 您好，說明 € 简体 🙂", "Asia/Taipei", "2024年6月27日 星期四 下午5:40:11"),
    "ru": ("Съешь ещё этих «булок» №5 🙂", "Europe/Moscow", "27 июня 2024\u202fг. в 12:40:11"),
    "ar": ("السلام عليكم، پ گ ٣ 🙂", "Africa/Cairo", "٢٧ يونيو ٢٠٢٤"),
    "en": ("“Quoted” – naïve café 🙂", "America/New_York", "June 27, 2024 at 5:40:11"),
}


ARABIC = "ar|اجتماع يوم الخميس|ليلى حداد||الاجتماع في الساعة ٩ صباحًا."


def sample_messages():
    for file in sorted((ROOT / "examples" / "messages").glob("*.eml")):
        yield file.name, file.read_bytes()
    for line in [ARABIC, *(ROOT / "examples" / "letters.txt").read_text().splitlines()]:
        language, subject, sender, _, text = line.split("|")
        date = "Thu, 11 Jul 2024 08:00:00 +0000" if line == ARABIC else "Wed, 26 Jun 2024 08:00:00 +0000"
        head = [f"From: {sender} <{language.lower()}@example.org>", "To: reader@example.com", f"Subject: {subject}",
                f"Date: {date}", "Content-Type: text/plain; charset=utf-8"]
        yield f"letter.{language}", "\n".join([*head, "", text, ""]).encode()


def browser(language, zone, directory):
    options = webdriver.ChromeOptions()
    options.binary_location = shutil.which("chromium")
    for option in ["--headless=new", "--disable-gpu", "--hide-scrollbars", "--window-size=1180,778"]:
        options.add_argument(option)
    if os.geteuid() == 0:
        options.add_argument("--no-sandbox")
    options.add_experimental_option("prefs", {"intl.accept_languages": f"{language},en-ZZ;q=0.3",
                                              "download.default_directory": str(directory)})
    driver = webdriver.Chrome(service=webdriver.chrome.service.Service(shutil.which("chromedriver")), options=options)
    driver.execute_cdp_cmd("Emulation.setTimezoneOverride", {"timezoneId": zone})
    return driver


class Reader(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.mailbox = cls.enterClassContext(Mailbox(PROGRAM))
        for name, message in sample_messages():
            cls.mailbox.put(name, message, is_seen=len(message) % 3 != 0)

    def wait(self, condition):
        return WebDriverWait(self.driver, 20).until(lambda _: condition())

    def texts(self, selector):
        script = "return [...document.querySelectorAll(arguments[0])].map(element => element.textContent)"
        return self.driver.execute_script(script, selector)

    def one(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def click(self, selector):
        before = self.one("html").id
        self.one(selector).click()
        self.wait(lambda: self.one("html").id != before
                  and self.driver.execute_script("return document.readyState") == "complete")

    def open(self, language, zone):
        self.driver = browser(language, zone, self.mailbox.path / "downloads")
        self.addCleanup(self.driver.quit)
        self.driver.get(self.mailbox.url)
        self.wait(lambda: (self.driver.get_cookie("zone") or {}).get("value") == zone)
        self.driver.get(self.mailbox.url)

    def test_finds_the_mailbox_in_the_own_language(self):
        for language, (text, zone, date) in READERS.items():
            with self.subTest(language):
                self.open(language, zone)
                page = self.one("html")
                self.assertEqual((page.get_attribute("lang"), page.get_attribute("dir")),
                                 (language, "rtl" if language == "ar" else "ltr"))
                self.check_list(language, date)
                self.check_letters()
                self.check_writing(text)
                self.check_hostile()
                self.driver.get(self.mailbox.url)
                self.assertEqual(self.texts(".subject")[0], "Zamówienie świąteczne")
                if PICTURES:
                    self.driver.save_screenshot(str(PICTURES / f"webmail.{language}.png"))
                complaints = [entry for entry in self.driver.get_log("browser") if "favicon" not in entry["message"]]
                self.assertEqual(complaints, [])
                self.driver.quit()

    def check_list(self, language, date):
        self.assertTrue([time for time in self.texts("time") if date in time], self.texts("time"))
        self.click("thead th:nth-child(2) a")
        self.assertEqual(self.one("th[aria-sort=ascending]").text, self.texts("th")[1])
        subjects = self.texts(".subject")
        self.assertGreater(len(subjects), 25)
        order = icu.Collator.createInstance(icu.Locale(language.replace("-", "_")))
        for before, behind in zip(subjects, subjects[1:]):
            self.assertLessEqual(order.compare(before, behind), 0, (before, behind))
        self.assertIn("明日の予定", subjects)

    def check_letters(self):
        shown = {"ja.iso-2022-jp.eml": "会議", "ko.ks_c_5601-1987.eml": "목요일 회의는 아침 아홉 시로 변경되었습니다.",
                 "de.windows-1252.eml": "fünf € – „frisch vom Baum“", "zh-TW.big5.eml": "許功", "letter.ru": "Съешь ещё"}
        for name, text in shown.items():
            self.driver.get(f"{self.mailbox.url}letter?name={name}")
            self.assertIn(text, self.texts("article")[0])

    def check_writing(self, text):
        body = f"{text}\n\n  <b>&amp; {text}\n" + text * 30
        name = text.split()[0]
        file = self.mailbox.path / f"{name} 資料.txt"
        file.write_text(text)
        self.driver.get(self.mailbox.url)
        self.click("header .button")
        typed = {"from": f'"{name}" <from@example.org>', "to": "to@example.org", "subject": text, "text": body}
        for field, value in typed.items():  # not typed: the driver has no keys for emoji
            self.driver.execute_script("document.getElementById(arguments[0]).value = arguments[1]", field, value)
        self.one("#file").send_keys(str(file))
        self.click(".letter button")
        self.assertEqual(self.texts("h1, pre"), [text, body])
        shown = f'"{name}"' if "," in name else name
        self.assertEqual(self.texts("dd")[0], f"{shown} <from@example.org>")
        self.assertEqual(self.texts(".files a"), [file.name])
        self.one(".files a").click()
        self.wait((self.mailbox.path / "downloads" / file.name).exists)
        self.driver.get(self.mailbox.url)
        self.assertIn(text, self.texts(".subject"))
        for sent in (self.mailbox.path / "Maildir").glob("*/*.webmail*"):
            sent.unlink()

    def check_hostile(self):
        message = f"From: {HOSTILE} <a@b.org>\nSubject: {HOSTILE}\nContent-Type: text/html\n\n{HOSTILE}"
        self.mailbox.put("hostile", message.encode())
        for place in ("", "write?answer=hostile", "letter?name=hostile"):
            self.driver.get(self.mailbox.url + place)
            self.assertNotEqual(self.driver.title, "run")
            self.assertEqual(self.texts("script, img"), [""])
        self.assertEqual(self.texts("h1, pre"), [HOSTILE, HOSTILE])
        for letter in (self.mailbox.path / "Maildir").glob("*/hostile*"):
            letter.unlink()

    def test_chooses_among_all_languages_on_the_page(self):
        self.open("en", "UTC")
        languages = [option.get_attribute("value") for option in Select(self.one("header select")).options]
        self.assertEqual(len(set(languages)), 47)
        for language in languages:
            Select(self.one("header select")).select_by_value(language)
            self.click("header form button")
            self.assertEqual(self.one("html").get_attribute("lang"), language.replace("_", "-"))
            self.assertIn("明日の予定", self.texts(".subject"))
            self.assertNotIn("\uFFFD", self.driver.page_source)


unittest.main()
