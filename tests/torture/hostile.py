"""Makes malformed pictures out of sound ones."""

import random
import struct
import zlib

# Sizes that headers lie with: around what limits allow, and what does not fit their types.
LIES = (0, 1, 7, 255, 4096, 16383, 16384, 32767, 65535, 65536, 1 << 24, (1 << 31) - 1, 1 << 31,
        (1 << 32) - 1)


def flipped(data, chance):
    """Some bits are the other way round, most of them near the front, where structure is."""
    result = bytearray(data)
    for _ in range(chance.choice((1, 1, 2, 8, 64))):
        reach = chance.choice((64, 1024, len(result)))
        position = chance.randrange(min(reach, len(result)))
        result[position] ^= 1 << chance.randrange(8)
    return bytes(result)


def cut(data, chance):
    return data[:chance.randrange(len(data))]


def overwritten(data, chance):
    """A block of one value, or of another part of the file."""
    result = bytearray(data)
    length = min(chance.choice((1, 2, 4, 16, 256)), len(result))
    to = chance.randrange(len(result) - length + 1)
    if chance.random() < 0.5:
        result[to:to + length] = bytes([chance.choice((0, 0x7F, 0x80, 0xFF))]) * length
    else:
        begin = chance.randrange(len(result) - length + 1)
        result[to:to + length] = result[begin:begin + length]
    return bytes(result)


def repeated(data, chance):
    """A part stands there twice, so that every offset behind it is wrong."""
    begin = chance.randrange(len(data))
    length = chance.choice((1, 4, 64, 1024))
    return data[:begin + length] + data[begin:begin + length] + data[begin + length:]


def lying(data, chance):
    """The header declares another size; where the format has a sum over it, that is right."""
    width = chance.choice(LIES)
    height = chance.choice(LIES)
    result = bytearray(data)

    def put(form, position, *values):
        size = 8 * struct.calcsize(form) // len(values)
        if position + struct.calcsize(form) <= len(result):
            struct.pack_into(form, result, position, *(value & ((1 << size) - 1) for value in values))

    if data.startswith(b"\x89PNG"):
        put(">II", 16, width, height)
        put(">I", 29, zlib.crc32(result[12:29]))
    elif data.startswith(b"\xff\xd8"):
        position = 2
        while position + 9 < len(data) and data[position] == 0xFF:
            marker = data[position + 1]
            if 0xC0 <= marker <= 0xCF and marker not in (0xC4, 0xC8, 0xCC):
                put(">HH", position + 5, height, width)
                break
            position += 2 + int.from_bytes(data[position + 2:position + 4], "big")
    elif data.startswith(b"GIF8"):
        put("<HH", 6, width, height)
    elif data.startswith(b"BM"):
        put("<II", 18, width, height)
    elif data[:4] == b"RIFF" and data[8:12] == b"WEBP":
        if data[12:16] == b"VP8X":
            put("<I", 24, (width - 1) & 0xFFFFFF)
            put("<I", 27, (height - 1) & 0xFFFFFF)
        else:
            put("<HH", 26, width, height)
    elif data[:2] in (b"II", b"MM"):
        order = "<" if data[:2] == b"II" else ">"
        directory = struct.unpack_from(order + "I", data, 4)[0] if len(data) > 8 else 0
        if 8 <= directory < len(data) - 2:
            count = struct.unpack_from(order + "H", data, directory)[0]
            for entry in range(directory + 2, min(directory + 2 + 12 * count, len(data) - 12), 12):
                tag = struct.unpack_from(order + "H", data, entry)[0]
                if tag in (256, 257):
                    put(order + "H", entry + 2, 4)
                    put(order + "I", entry + 8, width if tag == 256 else height)
    else:
        position = data.find(b"ispe")
        while position >= 0:
            put(">II", position + 8, width, height)
            position = data.find(b"ispe", position + 4)
    return bytes(result)


KINDS = {"bits flipped": flipped, "cut short": cut, "overwritten": overwritten,
         "repeated": repeated, "lying header": lying}


def inputs(samples, count, seed):
    """`count` malformed files as (kind, extension, content), every sample in turn."""
    chance = random.Random(seed)
    order = []
    for number in range(count):
        if not order:
            order = list(samples)
            chance.shuffle(order)
        path = order.pop()
        data = path.read_bytes()
        if not data:
            data = b"\0"
        kind = list(KINDS)[number % len(KINDS)]
        content = KINDS[kind](data, chance)
        if chance.random() < 0.2:
            content = flipped(content, chance) if content else content
        yield kind, path.suffix, content
