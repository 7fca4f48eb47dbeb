#!/usr/bin/env python3
"""Draws the program's icon (a pen display with a stylus stroke) into VelorDisplaySettings.ico.

Run from this folder when the design changes; the .ico is committed beside it.
"""
import struct


def pixel(size, x, y):
    """RGBA of one pixel of the icon at this size (y from the top)."""
    s = size / 32.0
    fx, fy = (x + 0.5) / s, (y + 0.5) / s
    # Bezel: a dark rounded rectangle; screen: a blue gradient; stand at the bottom.
    in_bezel = 2 <= fx <= 30 and 5 <= fy <= 25
    corner = min(fx - 2, 30 - fx, fy - 5, 25 - fy)
    if in_bezel and corner < 1.5:
        dx = 1.5 - min(fx - 2, 30 - fx) if min(fx - 2, 30 - fx) < 1.5 else 0
        dy = 1.5 - min(fy - 5, 25 - fy) if min(fy - 5, 25 - fy) < 1.5 else 0
        if dx * dx + dy * dy > 2.25:
            in_bezel = False
    if in_bezel:
        if 4 <= fx <= 28 and 7 <= fy <= 23:
            # The stylus stroke: a curve across the screen.
            curve = 15 + 5 * ((fx - 16) / 12.0) ** 3 - 2 * ((fx - 16) / 12.0)
            if 6 <= fx <= 26 and abs(fy - curve) < 1.1:
                return (255, 255, 255, 255)
            t = (fy - 7) / 16.0
            return (int(40 + 30 * t), int(120 + 40 * t), int(215 - 20 * t), 255)
        return (38, 42, 48, 255)
    if 13 <= fx <= 19 and 25 < fy <= 28:
        return (90, 96, 104, 255)
    if 9 <= fx <= 23 and 28 < fy <= 30:
        return (70, 76, 84, 255)
    return (0, 0, 0, 0)


def image(size):
    rows = []
    for y in range(size - 1, -1, -1):  # bottom-up
        row = b''.join(struct.pack('<BBBB', b, g, r, a) for (r, g, b, a) in
                       (pixel(size, x, y) for x in range(size)))
        rows.append(row)
    xor = b''.join(rows)
    mask_row = ((size + 31) // 32) * 4
    mask = b'\x00' * (mask_row * size)
    header = struct.pack('<IiiHHIIiiII', 40, size, size * 2, 1, 32, 0, len(xor) + len(mask), 0, 0, 0, 0)
    return header + xor + mask


def main():
    sizes = [16, 24, 32, 48]
    images = [image(s) for s in sizes]
    out = struct.pack('<HHH', 0, 1, len(sizes))
    offset = 6 + 16 * len(sizes)
    for s, data in zip(sizes, images):
        out += struct.pack('<BBBBHHII', s, s, 0, 0, 1, 32, len(data), offset)
        offset += len(data)
    out += b''.join(images)
    with open('VelorDisplaySettings.ico', 'wb') as f:
        f.write(out)


if __name__ == '__main__':
    main()
