"""Rewords a text by simple rules: the work of a stand-in, not of a model.

The meaning stays as it is. Doubled spaces go, sentences begin with a capital and end with a full stop, common shorthand and
contractions are written out, a few frequent slips are put right. Lines, indentation, addresses and quoted code are left alone.
"""

import re

SHORTHAND = {
    "u": "you", "ur": "your", "r": "are", "b4": "before", "gr8": "great", "l8r": "later",
    "pls": "please", "plz": "please", "thx": "thanks", "ty": "thank you", "np": "no problem", "sry": "sorry",
    "gonna": "going to", "wanna": "want to", "gotta": "have to", "kinda": "kind of", "sorta": "sort of",
    "lemme": "let me", "gimme": "give me", "dunno": "do not know", "cuz": "because", "coz": "because",
    "tho": "though", "thru": "through", "btw": "by the way", "asap": "as soon as possible", "imo": "in my opinion",
    "imho": "in my humble opinion", "fyi": "for your information", "afaik": "as far as I know", "idk": "I do not know",
    "brb": "I will be right back", "tmrw": "tomorrow", "tmr": "tomorrow", "msg": "message", "ppl": "people",
    "w/": "with", "w/o": "without", "yeah": "yes", "yep": "yes", "nope": "no", "ok": "all right", "okay": "all right",
    "hey": "hello", "hi": "hello", "i": "I",
}

CONTRACTIONS = {
    "aren't": "are not", "can't": "cannot", "couldn't": "could not", "didn't": "did not", "doesn't": "does not",
    "don't": "do not", "hadn't": "had not", "hasn't": "has not", "haven't": "have not", "i'll": "I will", "i'm": "I am",
    "i've": "I have", "isn't": "is not", "shouldn't": "should not", "they're": "they are", "they've": "they have",
    "wasn't": "was not", "we'll": "we will", "we're": "we are", "we've": "we have", "weren't": "were not",
    "won't": "will not", "wouldn't": "would not", "you'll": "you will", "you're": "you are", "you've": "you have",
}

SLIPS = {
    "alot": "a lot", "definately": "definitely", "occured": "occurred", "recieve": "receive", "recieved": "received",
    "seperate": "separate", "teh": "the", "thier": "their", "tommorow": "tomorrow", "untill": "until", "wich": "which",
}

# The same contractions with the apostrophe forgotten, less those that are words of their own.
UNMARKED = {word.replace("'", ""): full for word, full in CONTRACTIONS.items()}
for own_word in ("ill", "well", "were", "wont"):
    del UNMARKED[own_word]

WORDS = {**SHORTHAND, **UNMARKED, **SLIPS, **CONTRACTIONS}

# What is no prose: code between backquotes, addresses of pages, mail and files.
CODE_OR_TOKEN = re.compile(r"`[^`]*`|[^\s`]+")
ADDRESS_START = ("/", "./", "../", "~/", "`")
WORD = re.compile(r"(?<![\w'’./&-])(?:w/o|w/|[A-Za-z][\w]*(?:['’][A-Za-z]+)?)(?![\w'’/&-]|\.\w)")
ENDING = re.compile(r"[.!?…:;,]['\"”’)\]]*$")


def write_out(match):
    """The full form of one word, with the capital letter it had; the word itself where there is none."""
    word = match.group()
    full = WORDS.get(word.lower().replace("’", "'"))
    if full is None or (len(word) == 1 and word.isupper()):
        return word
    return full[0].upper() + full[1:] if word[0].isupper() else full


def reword_prose(text):
    text = WORD.sub(write_out, text)
    text = re.sub(r"(?<=\S)[ \t]{2,}(?=\S)", " ", text)
    text = re.sub(r"([!?])(?=[A-Za-z])", r"\1 ", text)
    text = re.sub(r"(?<![ \t])[ \t]+(?=[,;!?](?:\s|$)|\.(?:\s|$))", "", text)
    text = re.sub(r"([!?])\1+", r"\1", text)
    text = re.sub(r"^(\s*)(Hello|hello) (?=\w)", r"\1\2, ", text)
    return re.sub(r"((?<!\be\.g)(?<!\bi\.e)(?<!\betc)[.!?]\s+)([a-z])", lambda match: match.group(1) + match.group(2).upper(), text)


def reword_line(line):
    kept = []

    def set_aside(match):
        token = match.group()
        if not (token.startswith(ADDRESS_START) or "://" in token or "@" in token):
            return token
        kept.append(token)
        return f"\0{len(kept) - 1}\0"

    line = CODE_OR_TOKEN.sub(set_aside, line.replace("\0", ""))
    line = reword_prose(line)
    line = re.sub(r"^(\s*(?:[-*•>]\s+|\d+[.)]\s+)?)([a-z])", lambda match: match.group(1) + match.group(2).upper(), line)
    return re.sub(r"\0(\d+)\0", lambda match: kept[int(match.group(1))], line)


def reword(text):
    """The reworded `text`. White space around it is the caller's affair and stays."""
    lines = [reword_line(line) for line in text.split("\n")]
    for index in range(len(lines) - 1, -1, -1):
        ended = lines[index].rstrip()
        if ended:
            if not ENDING.search(ended) and (ended[-1].isalnum() or ended[-1] in "'\"”’)]"):
                lines[index] = ended + "." + lines[index][len(ended):]
            break
    return "\n".join(lines)
