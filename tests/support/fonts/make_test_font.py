#!/usr/bin/env python3
"""Makes the small fonts beside this file out of DejaVu Sans and DejaVu Sans Bold.

Only the letters of Latin-1 stay, without hints, kerning and alternatives, so that text looks the same
wherever it is drawn; the family gets a name of its own, so that no installed font is taken instead.

    make_test_font.py DejaVuSans.ttf Regular TavoranTestSans-Regular.ttf
    make_test_font.py DejaVuSans-Bold.ttf Bold TavoranTestSans-Bold.ttf
"""
import struct
import sys

FAMILY = "Tavoran Test Sans"
CHARACTERS = [*range(0x20, 0x7F), *range(0xA0, 0x100)]
COPYRIGHT = "Copyright (c) 2003 by Bitstream, Inc. All Rights Reserved. DejaVu changes are in public domain."


def tables_of(data):
    count = struct.unpack_from(">H", data, 4)[0]
    tables = {}
    for i in range(count):
        tag, _, offset, length = struct.unpack_from(">4sIII", data, 12 + 16 * i)
        tables[tag.decode()] = data[offset:offset + length]
    return tables


def glyph_of_character(cmap):
    for i in range(struct.unpack_from(">H", cmap, 2)[0]):
        platform, encoding, offset = struct.unpack_from(">HHI", cmap, 4 + 8 * i)
        if (platform, encoding) == (3, 1):
            break
    segments = struct.unpack_from(">H", cmap, offset + 6)[0] // 2
    at = offset + 14
    ends = struct.unpack_from(f">{segments}H", cmap, at)
    starts = struct.unpack_from(f">{segments}H", cmap, at + 2 * segments + 2)
    deltas = struct.unpack_from(f">{segments}h", cmap, at + 4 * segments + 2)
    ranges_at = at + 6 * segments + 2
    ranges = struct.unpack_from(f">{segments}H", cmap, ranges_at)

    def glyph(character):
        for i in range(segments):
            if starts[i] <= character <= ends[i]:
                if ranges[i] == 0:
                    return (character + deltas[i]) & 0xFFFF
                place = ranges_at + 2 * i + ranges[i] + 2 * (character - starts[i])
                found = struct.unpack_from(">H", cmap, place)[0]
                return (found + deltas[i]) & 0xFFFF if found else 0
        return 0

    return glyph


def components(outline):
    """Places of the glyph numbers in a glyph made of others, and the end of the last one."""
    places, at, more = [], 10, True
    while more:
        flags = struct.unpack_from(">H", outline, at)[0]
        places.append(at + 2)
        at += 4 + (4 if flags & 1 else 2) + (2 if flags & 8 else 4 if flags & 64 else 8 if flags & 128 else 0)
        more = flags & 32
    return places, at


def without_hints(outline, renumber):
    if not outline:
        return b""
    contours = struct.unpack_from(">h", outline)[0]
    if contours >= 0:
        at = 10 + 2 * contours
        hints = struct.unpack_from(">H", outline, at)[0]
        return outline[:at] + b"\0\0" + outline[at + 2 + hints:]
    places, end = components(outline)
    changed = bytearray(outline[:end])
    for place in places:
        flags = struct.unpack_from(">H", changed, place - 2)[0] & ~256
        struct.pack_into(">HH", changed, place - 2, flags, renumber[struct.unpack_from(">H", changed, place)[0]])
    return bytes(changed)


def names(style):
    full = f"{FAMILY} {style}"
    texts = {0: COPYRIGHT, 1: FAMILY, 2: style, 3: full, 4: full, 5: "Version 1.0",
             6: f"TavoranTestSans-{style}", 13: "See LICENSE.txt"}
    records, storage = b"", b""
    for name, text in sorted(texts.items()):
        encoded = text.encode("utf-16-be")
        records += struct.pack(">6H", 3, 1, 0x409, name, len(encoded), len(storage))
        storage += encoded
    return struct.pack(">3H", 0, len(texts), 6 + len(records)) + records + storage


def character_map(glyphs):
    runs = []
    for character, glyph in glyphs:
        if runs and runs[-1][1] + 1 == character and runs[-1][2] == glyph - character:
            runs[-1][1] = character
        else:
            runs.append([character, character, glyph - character])
    runs.append([0xFFFF, 0xFFFF, 1])
    count = len(runs)
    power = 1 << (count.bit_length() - 1)
    body = struct.pack(">4H", 2 * count, 2 * power, power.bit_length() - 1, 2 * (count - power))
    body += b"".join(struct.pack(">H", run[1]) for run in runs) + b"\0\0"
    body += b"".join(struct.pack(">H", run[0]) for run in runs)
    body += b"".join(struct.pack(">H", run[2] & 0xFFFF) for run in runs) + b"\0\0" * count
    return struct.pack(">2H2HI3H", 0, 1, 3, 1, 12, 4, 6 + len(body), 0) + body


def checksum(data):
    data += b"\0" * (-len(data) % 4)
    return sum(struct.unpack(f">{len(data) // 4}I", data)) & 0xFFFFFFFF


def main(source, style, target):
    with open(source, "rb") as file:
        tables = tables_of(file.read())
    count = struct.unpack_from(">H", tables["maxp"], 4)[0]
    loca = struct.unpack(f">{count + 1}I", tables["loca"]) if struct.unpack_from(">h", tables["head"], 50)[0] \
        else [2 * place for place in struct.unpack(f">{count + 1}H", tables["loca"])]
    outline = lambda glyph: tables["glyf"][loca[glyph]:loca[glyph + 1]]

    find = glyph_of_character(tables["cmap"])
    kept = [0]
    for glyph in map(find, CHARACTERS):
        if glyph not in kept:
            kept.append(glyph)
    for glyph in kept:  # grows while parts are found
        data = outline(glyph)
        if data and struct.unpack_from(">h", data)[0] < 0:
            for place in components(data)[0]:
                part = struct.unpack_from(">H", data, place)[0]
                if part not in kept:
                    kept.append(part)
    renumber = {old: new for new, old in enumerate(kept)}

    widths = struct.unpack_from(">H", tables["hhea"], 34)[0]
    def metrics(glyph):
        width = struct.unpack_from(">H", tables["hmtx"], 4 * min(glyph, widths - 1))[0]
        side = struct.unpack_from(">h", tables["hmtx"], 4 * glyph + 2 if glyph < widths
                                  else 4 * widths + 2 * (glyph - widths))[0]
        return struct.pack(">Hh", width, side)

    outlines, places = b"", []
    for glyph in kept:
        places.append(len(outlines))
        data = without_hints(outline(glyph), renumber)
        outlines += data + b"\0" * (-len(data) % 4)
    places.append(len(outlines))

    head = bytearray(tables["head"])
    struct.pack_into(">I", head, 8, 0)
    struct.pack_into(">h", head, 50, 1)
    hhea = tables["hhea"][:34] + struct.pack(">H", len(kept))
    made = {
        "OS/2": tables["OS/2"],
        "cmap": character_map([(c, renumber[find(c)]) for c in CHARACTERS if find(c)]),
        "glyf": outlines,
        "head": bytes(head),
        "hhea": hhea,
        "hmtx": b"".join(map(metrics, kept)),
        "loca": struct.pack(f">{len(places)}I", *places),
        "maxp": tables["maxp"][:4] + struct.pack(">H", len(kept)) + tables["maxp"][6:],
        "name": names(style),
        "post": struct.pack(">I", 0x00030000) + tables["post"][4:32],
    }
    power = 1 << (len(made).bit_length() - 1)
    directory = struct.pack(">I4H", 0x00010000, len(made), 16 * power, power.bit_length() - 1, 16 * (len(made) - power))
    offset, body = 12 + 16 * len(made), b""
    for tag, data in sorted(made.items()):
        directory += struct.pack(">4sIII", tag.encode(), checksum(data), offset + len(body), len(data))
        body += data + b"\0" * (-len(data) % 4)
    font = bytearray(directory + body)
    adjustment = (0xB1B0AFBA - checksum(bytes(font))) & 0xFFFFFFFF
    head_at = next(struct.unpack_from(">I", font, 12 + 16 * i + 8)[0] for i in range(len(made))
                   if font[12 + 16 * i:16 + 16 * i] == b"head")
    struct.pack_into(">I", font, head_at + 8, adjustment)
    with open(target, "wb") as file:
        file.write(font)


main(*sys.argv[1:])
