"""What becomes of a text on its way: cut at a character's end when it is stored, always UTF-8 when it is answered."""


def cut(text, size):
    """At most `size` bytes of `text`; a character that does not fit whole is left out."""
    data = text.encode("utf-8", "surrogateescape")
    if len(data) <= size:
        return text
    for back in range(1, min(size, 3) + 1):  # a character that begins within the last bytes and ends behind them
        for length in (2, 3, 4):
            piece = data[size - back:size - back + length]
            if length > back and len(piece) == length and _is_character(piece):
                return data[:size - back].decode("utf-8", "surrogateescape")
    return data[:size].decode("utf-8", "surrogateescape")


def _is_character(data):
    try:
        return len(data.decode("utf-8")) == 1
    except UnicodeDecodeError:
        return False


def shown(text):
    """`text` as a document has it: U+FFFD in the place of what is no UTF-8."""
    return text.encode("utf-8", "surrogateescape").decode("utf-8", "replace")


def is_storable(text):
    """UCI keeps it: no control characters but the blank ones (and DEL)."""
    return all(character >= " " or character in "\t\r\n" for character in text)


def is_one_line(text):
    """No control character at all."""
    return all(character >= " " and character != "\x7f" for character in text)
