"""Of every language: letters that its mail charset holds, and the charsets that it admits in headers beside UTF-8 and
UTF-7."""

ROWS = [
    ("en de fr es af ca da nl fi gl ga is it no pt sv eu sq", "Größeçñåœ€", "iso-8859-1 windows-1252"),
    ("cs hu pl ro hr sk sl", "Žluťýkůń", "iso-8859-2"),
    ("et lv lt", "Šūņģērõąė", "iso-8859-4"),
    ("ru bg be sr mk uk", "Журналј", "iso-8859-5"),
    ("el", "Καλημέρα", "iso-8859-7"),
    ("tr", "Şğıİçöü", "iso-8859-9"),
    ("ar", "رسالة", "iso-8859-6"),
    ("he", "שלום", "iso-8859-8"),
    ("yi", "בריוו", ""),
    ("th", "สวัสดี", "tis-620"),
    ("ja", "会議の件", "iso-2022-jp"),
    ("ko", "안녕하세요", "euc-kr ks_c_5601-1987"),
    ("zh zh-CN zh_CN", "会议通知", "gb2312"),
    ("zh-TW zh_TW", "許功蓋", "big5"),
]
SAMPLES = [
    (language, letters, charsets.split()) for languages, letters, charsets in ROWS for language in languages.split()
]
