"""Whether a picture file is whole: PNG and TIFF are decoded to the last byte, raw ones measured."""

import os
import struct
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"
CHANNELS = {0: 1, 2: 3}  # of the colour types that are written: grey, RGB
TIFF_TYPES = {1: "B", 2: "c", 3: "H", 4: "I", 5: "Q", 7: "B"}


def _chunks(data):
    """Type and content of each chunk; raises ValueError where one is cut or damaged."""
    at = len(SIGNATURE)
    while at < len(data):
        length, kind = struct.unpack_from(">I4s", data, at)
        content = data[at + 8:at + 8 + length]
        if len(data) < at + 12 + length:
            raise ValueError("ends inside of a chunk")
        if struct.unpack_from(">I", data, at + 8 + length)[0] != zlib.crc32(kind + content):
            raise ValueError("a chunk is damaged")
        yield kind, content
        at += 12 + length


def check_png(data):
    """Raises ValueError, struct.error or zlib.error unless every row is there."""
    if not data.startswith(SIGNATURE):
        raise ValueError("no PNG")
    chunks = list(_chunks(data))
    kinds = [kind for kind, _ in chunks]
    if kinds[:1] != [b"IHDR"] or kinds[-1] != b"IEND" or kinds.count(b"IEND") != 1:
        raise ValueError("lacks its first or last chunk")
    width, height, depth, colour = struct.unpack_from(">IIBB", chunks[0][1])
    inflater = zlib.decompressobj()
    rows = inflater.decompress(b"".join(content for kind, content in chunks if kind == b"IDAT"))
    stride = 1 + (width * depth * CHANNELS[colour] + 7) // 8
    if not inflater.eof or inflater.unused_data or len(rows) != stride * height:
        raise ValueError("does not have all of its rows")
    if max(rows[::stride]) > 4:
        raise ValueError("a row has an unknown filter")


def _tiff_tags(data):
    """Number: values, of the one directory of a little-endian TIFF file."""
    magic, at = struct.unpack_from("<4sI", data)
    if magic != b"II*\0":
        raise ValueError("no TIFF")
    tags = {}
    count, = struct.unpack_from("<H", data, at)
    for entry in range(at + 2, at + 2 + 12 * count, 12):
        tag, kind, length, value = struct.unpack_from("<HHII", data, entry)
        layout = f"<{length}{TIFF_TYPES[kind]}"
        place = entry + 8 if struct.calcsize(layout) <= 4 else value
        tags[tag] = struct.unpack_from(layout, data, place)
    if struct.unpack_from("<I", data, at + 2 + 12 * count) != (0,):
        raise ValueError("has a second directory")
    return tags


def check_tiff(data):
    """Raises ValueError or struct.error unless every strip is there; uncompressed files only."""
    tags = _tiff_tags(data)
    width, height, offsets, counts = tags[256][0], tags[257][0], tags[273], tags[279]
    if tags.get(259, (1,)) != (1,):
        raise ValueError("is compressed")
    if sum(counts) != width * height * sum(tags[258]) // 8:
        raise ValueError("does not have all of its rows")
    if max(offset + count for offset, count in zip(offsets, counts)) > len(data):
        raise ValueError("ends inside of a strip")


CHECKS = {".png": check_png, ".tiff": check_tiff}


def complaints(path, raw_bytes=None):
    """What is wrong with a picture file; [] = nothing. `raw_bytes`: length of a raw one."""
    try:
        extension = os.path.splitext(path)[1]
        if extension == ".raw":
            size = os.path.getsize(path)
            if raw_bytes is not None and size != raw_bytes:
                raise ValueError(f"has {size} bytes instead of {raw_bytes}")
        elif extension in CHECKS:
            with open(path, "rb") as file:
                CHECKS[extension](file.read())
        else:
            raise ValueError("is no picture")
    except (OSError, KeyError, ValueError, struct.error, zlib.error) as error:
        return [f"{os.path.basename(path)}: {error}"]
    return []
