#!/usr/bin/env bash
# What users read goes through Qt's translation system: no QML file shows a literal of its own, and no
# C++ file makes a sentence without tr() or translate().
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

broken=0
git ls-files -z --cached --others --exclude-standard '*.qml' \
    | grep -zvE '(^tests/|gallery/)' \
    | xargs -0 perl -CSD -ne '
        BEGIN { $broken = 0 }
        s{(^|\s)//.*}{};
        next if /^\s*import /;
        s/qsTr\("(?:[^"\\]|\\.)*"/qsTr(/g;
        # Keys are written as the shortcuts are; they read the same in tool tips.
        s/\b(shortcutText|sequences?):.*//;
        while (/"((?:[^"\\]|\\.)*)"/g) {
            my $text = $1;
            next unless $text =~ /\p{L}/ && $text !~ /^%\d$/;
            # Names: of icons, properties and colours, of files, of notifications, of the browser.
            next if $text =~ /^[a-z][A-Za-z]*(-[a-z]+)*$/ || $text =~ /^#[0-9a-f]+$/;
            next if $text =~ /^(Lumaro\.\w+|VarnM3U8Sniffer\/[\d.]+|\w+\.qml|Ctrl\+.*|[\/.][a-z]+)$/;
            print "$ARGV:$.: \"$text\" is not translated\n";
            $broken = 1;
        }
        close ARGV if eof;
        END { $? = $broken }' || broken=1

# Names, and what only programs and developers read.
git ls-files -z --cached --others --exclude-standard '*.cpp' '*.h' \
    | grep -zE '^(app|display|download|finder|player|playlist|recording|ui|platform)/' \
    | grep -zvE '(gallery/|^platform/ContentRuleList.cpp|^finder/WebListFile.cpp|^player/YouTubePage.cpp)' \
    | xargs -0 perl -CSD -0777 -ne '
        BEGIN { $broken = 0 }
        while (/(.*?)\b(?:QStringLiteral\(|QLatin1String\(|u)\s*"([^"\n]*[A-Za-z]+ [A-Za-z]+[^"\n]*)/g) {
            my ($before, $text, $line) = ($1, $2, 1 + (substr($_, 0, pos) =~ tr/\n//));
            next if $before =~ /q(Warning|Critical|Debug|Info|Fatal|CDebug)\(|\blog\(|setObjectName\($/;
            next if $text =~ /^(M3U8 Stream Finder|Noto Sans|HLS Video|Tor Browser .*|Ad Blocker: .*)$/;
            next if $text =~ /^(Lumaro | Recording |yyyy-|mp4 mov |file http |var v=|document\.)/;
            next if $text eq "It is not a local file.";
            # Names of libraries and licences, MIME types.
            next if $ARGV eq "app/HelpModel.cpp" || $text =~ /^video\/mp4 /;
            print "$ARGV:$line: \"$text\" is not translated\n";
            $broken = 1;
        }
        END { $? = $broken }' || broken=1
exit $broken
