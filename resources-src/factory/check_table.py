#!/usr/bin/env python3
"""Checks materials.tsv before it is committed or turned into the library.

    check_table.py [materials.tsv]

Prints every problem found and exits with 1 when there is any.
"""

import collections
import os
import sys

HEADER = ["tube", "power", "material", "icon", "thickness", "craft", "speed", "power1",
          "power1min", "frequency", "air", "passes", "dpi", "note"]
POWERS = {
    "Glass": [40, 60, 80, 100, 130, 150],
    "RFBurning": [30, 60],
    "Fiber": [20, 30, 50],
    "Semiconductor": [5, 10, 20],
}
CRAFTS = ["Cutting", "Tracing", "Shallow Carving", "Deep Carving", "Vision Mark"]
ORGANIC = {"Plywood", "MDF", "Acrylic", "Leather", "Paper and card", "Fabric", "Cork", "Rubber"}


def main(argv):
    here = os.path.dirname(os.path.abspath(__file__))
    path = argv[1] if len(argv) > 1 else os.path.join(here, "materials.tsv")
    icon_dirs = [os.path.join(here, "swatches"),
                 os.path.join(here, "..", "..", "resources", "Res", "Icon")]
    errors = []

    def err(line, text):
        errors.append("%s:%d: %s" % (os.path.basename(path), line, text))

    with open(path, encoding="utf-8") as f:
        lines = [(n + 1, l.rstrip("\n")) for n, l in enumerate(f)]
    lines = [(n, l) for n, l in lines if l.strip() and not l.startswith("#")]
    if not lines or lines[0][1].split("\t") != HEADER:
        err(lines[0][0] if lines else 0, "header is not: " + " ".join(HEADER))
        return report(errors)

    seen = set()
    icons = {}
    thicknesses = collections.defaultdict(set)
    series = collections.defaultdict(list)
    count = 0
    for n, line in lines[1:]:
        f = line.split("\t")
        if len(f) != len(HEADER):
            err(n, "%d fields, want %d" % (len(f), len(HEADER)))
            continue
        count += 1
        r = dict(zip(HEADER, f))
        tube, mat, craft = r["tube"], r["material"], r["craft"]
        try:
            power = int(r["power"])
            thick = float(r["thickness"])
            speed = float(r["speed"])
            p1, p1min = float(r["power1"]), float(r["power1min"])
            freq, air, passes, dpi = (int(r[k]) for k in ("frequency", "air", "passes", "dpi"))
        except ValueError as e:
            err(n, "not a number: %s" % e)
            continue
        if tube not in POWERS:
            err(n, "unknown tube %r" % tube)
            continue
        if power not in POWERS[tube]:
            err(n, "%s has no %d W class" % (tube, power))
        if craft not in CRAFTS:
            err(n, "unknown craft %r" % craft)
        if craft in ("Cutting", "Tracing") and not r["speed"].isdigit():
            # The library reads line speeds as integers; 12.5 would load as 0.
            err(n, "%s speed must be a whole number, got %r" % (craft, r["speed"]))
        if thick <= 0 or speed <= 0:
            err(n, "thickness and speed must be positive")
        if not (0 < p1 <= 100 and 0 < p1min <= p1):
            err(n, "powers out of range: %g / %g" % (p1, p1min))
        if tube == "Fiber":
            if not 20000 <= freq <= 60000:
                err(n, "fibre frequency %d outside 20-60 kHz" % freq)
        elif freq != 4000:
            err(n, "frequency of a %s source should be 4000" % tube)
        if air not in (0, 1) or passes < 1 or not 0 <= dpi <= 10:
            err(n, "air, passes or dpi out of range")
        if tube == "Fiber" and craft == "Cutting":
            err(n, "a fibre source does not cut %s" % mat)
        if tube == "Fiber" and mat in ORGANIC:
            err(n, "%s is not a fibre material" % mat)
        if tube in ("Glass", "RFBurning") and mat == "Stainless steel":
            err(n, "a CO2 tube does not mark bare stainless steel")
        if tube == "Semiconductor" and (mat in ("Acrylic", "Glass")
                                        or (craft == "Cutting" and thick >= 10)):
            err(n, "a diode cannot process %g mm %s this way" % (thick, mat))
        if icons.setdefault(mat, r["icon"]) != r["icon"]:
            err(n, "%s has two icons: %s and %s" % (mat, icons[mat], r["icon"]))
        key = (tube, power, mat, thick, craft)
        if key in seen:
            err(n, "duplicate %s" % (key,))
        seen.add(key)
        thicknesses[(tube, power, mat)].add(thick)
        series[(tube, mat, thick, craft)].append((power, speed, p1, n))

    for tube, powers in POWERS.items():
        for power in powers:
            if not any(k[0] == tube and k[1] == power for k in thicknesses):
                errors.append("no rows for %s %d W" % (tube, power))
    for (tube, power, mat), ts in sorted(thicknesses.items()):
        if not 2 <= len(ts) <= 4:
            errors.append("%s %d W %s has %d thicknesses" % (tube, power, mat, len(ts)))
    # A stronger source of the same kind runs faster or at a lower setting.
    for key, rows in series.items():
        rows.sort()
        for (pa, sa, ka, _), (pb, sb, kb, nb) in zip(rows, rows[1:]):
            if sb < sa or (sb == sa and kb > ka):
                err(nb, "%s: %d W is slower or stronger than %d W" % (" ".join(map(str, key)), pb, pa))
    for mat, icon in sorted(icons.items()):
        for d in icon_dirs:
            if not os.path.isfile(os.path.join(d, icon)):
                errors.append("icon %s of %s missing in %s" % (icon, mat, os.path.normpath(d)))
    if not 400 <= count <= 700:
        errors.append("%d rows; keep the table between 400 and 700" % count)
    return report(errors, count)


def report(errors, count=0):
    for e in errors:
        print(e)
    if not errors:
        print("ok: %d rows" % count)
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
