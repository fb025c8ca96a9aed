# awk -F '\t' -v client="W H" -v out=PREFIX -f replay.awk ITEMS SESSION: the lines of the console program for a session, a file for each start:
# PREFIX.input, PREFIX1.input, … ITEMS are the lines that probe.qms prints.
function put(line) { print line > (out part ".input") }
function code(name,    c) {
    if (name ~ /^ctrl\+/) return index("abcdefghijklmnopqrstuvwxyz", substr(name, 6))
    if (name ~ /^shift\+[a-z]$/) return toupper(substr(name, 7))
    if (name in special) return special[name]
    return name
}
BEGIN { split("Return 13 Escape 27 BackSpace 8 Delete KEY_DEL Insert KEY_INS Home KEY_HOME equal = plus + minus -", s, " ")
        for (i = 1; i in s; i += 2) special[s[i]] = s[i + 1]
        for (i = 0; i < 10; i++) special[i] = "\x27" i "\x27" }
FILENAME ~ /items$/ { items[++n] = $0; next }
FNR == 1 { put("size " client) }
{ what = $1; sub(/ .*/, "", what); rest = substr($0, length(what) + 2) }
what == "" || what ~ /^#/ || what == "same" || what == "from" { next }
what == "start" { part++; put("size " client); next }
what == "close" || what == "refuse" { for (i = 1; i <= held; i++) put(lines[i]); held = 0; put(rest == "frame" ? "close" : "key 17"); next }
what == "choose" || what == "answer" { lines[++held] = "answer " rest; next }
what == "tick" { lines[++held] = "answer " rest " 1"; next }
what == "discard" { lines[++held] = "button 1"; next }
what == "button" || what == "file" { lines[++held] = $0; next }
{ for (i = 1; i <= held; i++) put(lines[i]); held = 0 }
what == "pick" {
    title = rest; sub(/ .*/, "", title); text = substr(rest, length(title) + 2)
    if (text ~ /^[1-5]( |$)/) { put("menu 0 " 8 + substr(text, 1, 1)); next }
    for (i = 1; i <= n; i++) { split(items[i], part_, "\t"); if ((part_[5] == title || index(part_[5], title "(") == 1) && index(part_[6], text) == 1) { put("menu " part_[2] " " part_[3]); next } }
    print "no item " rest > "/dev/stderr"; next }
what == "key" { put("key " code(rest)); next }
what == "shot" { put("shot " rest ".ppm"); next }
{ put($0) }
