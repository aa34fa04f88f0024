"""The HTML reader: how fast it reads mail, and that no text makes it slow."""

import os
import re

from table import Row

ROUNDS, MEBIBYTE = 9, 1024 * 1024

# What mail programs and calendar services write into descriptions, in turn.
MAIL = (
    '<div dir="ltr" class="gmail_default" style="font-family:Arial,sans-serif;font-size:14px;color:#333">'
    '<p style="margin:0 0 12px">Hello&nbsp;<b>Anna</b>,<br>please join <a href="https://example.com/meet/abc-defg-hij'
    '?authuser=0&amp;hs=122" target="_blank" rel="noopener">the meeting</a> at 10 o&#39;clock.</p></div>\n',
    "<p>Nächste Woche besprechen wir die Zahlen des letzten Quartals &ndash; bitte bringt eure Fragen mit, auch die "
    "zu den Reisekosten, und lest vorher die Unterlagen, die im gemeinsamen Ordner liegen.</p>\n",
    '<!-- agenda --><table border="0" cellpadding="0" cellspacing="0" width="100%"><tr><td style="padding:4px">When'
    '</td><td style="padding:4px">Wed &mdash; Thu</td></tr><tr><td>Where</td><td>Room 4</td></tr></table>\n',
    '<ul style="list-style:disc"><li>Minutes of the last meeting</li><li>Budget</li><li>Any other business</li></ul>\n',
    '<div style="display:none;max-height:0">Do not reply</div><span style="color:#888;font-size:11px">'
    "──────────<br>Dial in: +1&nbsp;555&nbsp;0100, PIN 1234&#x23;<br></span>\n",
    "<blockquote class=quoted><pre>  09:00  Arrival\n  09:30  Talks &amp; questions\n</pre></blockquote>\n",
)


def repeated(piece, size, before=""):
    return before + piece * ((size - len(before)) // len(piece))


def attributes(size):
    """One tag with as many attributes of different names as fit."""
    names = (f"a{number}=1" for number in range(size // 10))
    return f"<p {' '.join(names)}>x"[:size]


# Texts that cost some readers the square of their length, by what they are made of.
BOMBS = {
    "attributes of one tag": attributes,
    "open <b>": lambda size: repeated("<b>", size),
    "open <div>": lambda size: repeated("<div>", size),
    "open tables": lambda size: repeated("<table><tr><td>", size),
    "paragraphs": lambda size: repeated("<p>", size),
    "stray end tags": lambda size: repeated("</i>", size, "<b>" * 200),
    "crossing tags": lambda size: repeated("<i><p></b></i>", size, "<b>" * 200),
    "open comments": lambda size: repeated("<!--", size),
    "open scripts": lambda size: repeated("</script", size, "<script>"),
    "open quotes": lambda size: repeated("<a b='", size),
    "references": lambda size: repeated("&notit;", size),
    "unknown references": lambda size: repeated("&abcdefg", size),
    "ampersands": lambda size: repeated("&", size),
    "less-than signs": lambda size: repeated("<", size),
    "declarations": lambda size: repeated("<?", size),
}


def measure(session, program):
    path = os.path.join(session.home, "text.html")

    def read(text, times=ROUNDS):
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        printed = session.run(program, path, str(times))
        return [float(value) for value in re.match(r"([\d.]+) ms, ([\d.]+) MB/s", printed).groups()]

    mail = "".join(MAIL)
    yield Row.at_least("HTML: mail of 256 KiB", read(mail * (MEBIBYTE // 4 // len(mail.encode())))[1], "MB/s", 25)
    worst = {name: read(bomb(MEBIBYTE), 3)[0] for name, bomb in BOMBS.items()}
    slowest = max(worst, key=worst.get)
    yield Row.at_most(f"HTML: 1 MiB of {slowest}, the slowest bomb", worst[slowest], "ms", 100)
    # Twice as much may not take much more than twice as long. Of three tries the best: the machine's mood can make
    # one look steep, but nothing makes a square look flat.
    def growth_of(bomb):
        return min(read(bomb(MEBIBYTE // 2), 5)[0] / read(bomb(MEBIBYTE // 4), 5)[0] for _ in range(3))

    growth = {name: growth_of(bomb) for name, bomb in BOMBS.items()}
    steepest = max(growth, key=growth.get)
    yield Row.at_most(f"HTML: twice the {steepest}, the steepest bomb, takes", growth[steepest], "times", 2.5)
