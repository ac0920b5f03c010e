# Makes of CHANGELOG.md what packages want to know of each release:
#   awk -v format=appstream|debian -v version=VERSION -v date=YYYY-MM-DD -v contact=CONTACT
# What is unreleased is told as VERSION of DATE, under development.

function escaped(text) {
    gsub(/`/, "", text)
    if (format != "appstream")
        return text
    gsub(/&/, "\\&amp;", text)
    gsub(/</, "\\&lt;", text)
    gsub(/>/, "\\&gt;", text)
    return text
}

# Lines of at most 78 characters, the later ones indented.
function wrapped(bullet, text,    words, count, i, line, lines) {
    count = split(text, words, " ")
    line = bullet words[1]
    for (i = 2; i <= count; ++i) {
        if (length(line) + 1 + length(words[i]) > 78) {
            lines = lines line "\n"
            line = "    " words[i]
        } else {
            line = line " " words[i]
        }
    }
    return lines line
}

function endItem() {
    if (item == "")
        return
    if (format == "appstream")
        print "          <li>" escaped(item) "</li>"
    else
        print wrapped("  * ", escaped(item))
    item = ""
}

function endRelease() {
    endItem()
    if (number == "")
        return
    if (format == "appstream") {
        if (hasList)
            print "        </ul>\n      </description>"
        print "    </release>"
    } else {
        command = "LC_ALL=C date -u -R -d " day
        command | getline written
        close(command)
        print "\n -- " contact "  " written "\n"
    }
}

function beginRelease(name, when, kind) {
    endRelease()
    number = name
    day = when
    hasList = 0
    if (format == "appstream")
        printf "    <release version=\"%s\" date=\"%s\" type=\"%s\">\n", number, day, kind
    else
        printf "lumaro (%s) unstable; urgency=medium\n\n", number
}

/^## Unreleased/ { beginRelease(version, date, "development"); next }
/^## \[?[0-9]/ {
    gsub(/[][]/, "")
    beginRelease($2, $NF, "stable")
    next
}
number == "" { next }
/^- / {
    endItem()
    if (!hasList && format == "appstream")
        print "      <description>\n        <ul>"
    hasList = 1
    item = substr($0, 3)
    next
}
/^  [^ ]/ && item != "" { item = item " " substr($0, 3); next }
{ endItem() }

END { endRelease() }
