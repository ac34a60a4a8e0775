# bash completion for zel: commands, their options, languages, charsets and files.

_zel_charsets="us-ascii utf-8 utf-16 utf-16be utf-16le utf-32 utf-7 iso-8859-1 iso-8859-2 iso-8859-4 iso-8859-5
    iso-8859-6 iso-8859-7 iso-8859-8 iso-8859-9 iso-8859-15 windows-1250 windows-1251 windows-1252 koi8-r koi8-u
    tis-620 Shift_JIS euc-jp iso-2022-jp euc-kr ks_c_5601-1987 iso-2022-kr gb2312 gbk gb18030 hz-gb-2312 big5"

_zel_commands="convert repair decode-header encode-header decode-parameter encode-parameter decode-body encode-body
    decode-mailbox encode-mailbox vcard date sort languages"

_zel_options() {
    case $1 in
    convert) echo "-f -t" ;;
    decode-header) echo "-l -t" ;;
    decode-parameter | decode-mailbox) echo "-t" ;;
    encode-header | encode-parameter | encode-body | vcard) echo "-l" ;;
    decode-body) echo "-c -l -t" ;;
    date) echo "-l -z -t" ;;
    sort) echo "-l -c --headers" ;;
    repair) echo "-c" ;;
    esac
}

_zel() {
    local word=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]} words
    case ${COMP_WORDS[COMP_CWORD - 1]} in
    -c | -f | -t) words=$_zel_charsets ;;
    -l) words=$(zel languages 2>/dev/null | cut -d ' ' -f 1) ;;
    -z) words=$(cd /usr/share/zoneinfo 2>/dev/null && echo [A-Z]*/*) ;;
    *)
        words="$(_zel_options "$command") -h --help --version"
        [ "$COMP_CWORD" -gt 1 ] || words="$_zel_commands $words"
        if [ "$command" = convert ] && [ "$COMP_CWORD" -gt 1 ] && [ "${word#-}" = "$word" ]; then
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            return
        fi
        ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}

complete -F _zel zel
