#!/bin/sh
# Runs one of the example programs on the samples and looks for the lines that tell that it works.
# usage: examples.sh DIRECTORY_OF_PROGRAMS DIRECTORY_OF_SAMPLES PROGRAM
set -eu

bin=$1 samples=$2 program=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

run() { "$bin/$program" "$@" >"$work/output"; }
says() {
    for line; do
        grep -qF -e "$line" "$work/output" && continue
        cat "$work/output"
        echo "$program does not say: $line"
        exit 1
    done
}

case $program in
direct)
    run "$samples/texts"
    [ "$(grep -c 'the same text' "$work/output")" = 6 ]
    says "您好，会议改到星期四上午九点。" "您好，會議改到星期四上午九點。"
    ;;
headers)
    run "$samples"/messages/*.eml
    says "Subject: Übergabe der Schlüssel am Montag, Grüße aus Köln" "From: \"鈴木\" <suzuki@example.net>" \
        "goes =?iso-2022-jp?B?GyRCOzNFREJATzobKEI=?= <taro@example.org>" "Subject: Pr?fung bestanden" \
        "goes =?iso-8859-2?Q?Zam=F3wienie_=B6wi=B1teczne?=" "goes =?big5?B?rKGwyrNcpWm7oan6?= (2024)" \
        "goes as it came, for koi8-r is not admitted for ru" "Comments: =?iso-8859-1?Q?cut off in the mid="
    ;;
show)
    run "$samples"/messages/*.eml
    says "From     Maïté Nœuds <maite@example.org>" "(by GMime: iso-8859-15 is not admitted for fr)" \
        "Subject  Re: Отпуск" "Subject  Prüfung bestanden" "(by GMime: raw 8-bit bytes)" "File     会議資料.txt" \
        "die Äpfel kosten fünf € – „frisch vom Baum“." "목요일 회의는 아침 아홉 시로 변경되었습니다." \
        "Date     2024年6月27日木曜日 10:15:00" 
    ;;
dates)
    run 1719450900 Asia/Tokyo ja
    says "2024年6月27日木曜日 10:15:00"
    run 1719450900 Host/India en
    says "June 27, 2024" "6:45:00"
    ;;
reply)
    run de '=?koi8-r?B?78LFxA==?= in =?windows-1252?Q?K=F6ln?=' 'Gern 🙂'
    says "Subject: Re: =?utf-8?B?0J7QsdC10LQ=?= in =?utf-8?B?S8O2bG4=?=" "charset=utf-8" "Encoding: base64"
    if run de a "$(printf '\351')" 2>"$work/errors"; then exit 1; fi
    grep -qx "reply: a text that is not UTF-8" "$work/errors"
    ;;
*) exit 1 ;;
esac
