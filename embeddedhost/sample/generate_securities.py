#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Writes securities.csv beside it: 5,000 invented securities over the boards of boards.csv.

The same boards give the same securities; run it again only to change them all.
"""

import csv
import pathlib
import random

COUNT = 5000
HERE = pathlib.Path(__file__).parent
FIRST = """Amber Arden Aspen Aster Barrow Beacon Birch Bramble Briar Calder Cedar Clover Copper
Coral Crane Dale Drift Elder Ember Falcon Fern Flint Garnet Granite Harbour Hazel Heather Heron
Indigo Ivory Juniper Kestrel Lark Linden Lunar Maple Marl Meadow Mistral Moss Nordlys Oak Onyx
Orchard Pebble Pine Quarry Raven Reed Saffron Sable Slate Solstice Spruce Sterling Swift Tamar
Thistle Umber Vale Verdant Willow Wren Yarrow Zephyr""".split()
SECOND = """Analytics Bank Biotech Brewing Cables Cement Chemicals Energy Foods Freight Gas Gold
Holdings Insurance Logistics Media Metals Mining Motors Networks Paper Pharma Power Property
Rail Retail Robotics Shipping Software Steel Sugar Telecom Textiles Timber Tyres Water""".split()
PRICE_STEPS = {
    "S": "0.01 0.05 0.001 0.5 5",
    "F": "0.01 0.25 1 5",
    "O": "0.01 0.05",
    "B": "0.0001 0.01",
    "I": "0.01",
}
LOTS = {"S": [1, 10, 100, 1000], "B": [1, 10]}
MONTHS = "Mar Jun Sep Dec".split()


def issuers(source):
    pairs = [(a, b) for a in FIRST for b in SECOND]
    source.shuffle(pairs)
    taken = set()
    for first, second in pairs:
        code = (first[:2] + second[:2]).upper()
        number = 0
        while (base := code + (str(number) if number else "")) in taken:
            number += 1
        taken.add(base)
        yield base, f"{first} {second}"


def spelled(source, name):
    """Hosts deliver names in every letter case."""
    return source.choice([name, name, name, name.upper(), name.lower()])


def security(source, kind, issuer, number):
    """The code and the name of one security of a board."""
    base, name = issuer
    month, year = MONTHS[number % 4], 26 + number // 4 % 3
    if kind == "F":
        return f"{base}-{month}{year}", f"{name} Future {month} {year}"
    if kind == "O":
        strike = 10 + number % 40 * 5
        side = "PC"[number % 2]
        return f"{base}{month}{year}{side}{strike}", f"{name} {month} {year} {strike} {side}"
    if kind == "B":
        return f"{base}{30 + number % 9}", f"{name} {1 + number % 7}.5% 20{30 + number % 9}"
    if kind == "I":
        return f"{base}X", f"{name} Tracker"
    return base, spelled(source, name)


def steps(source, kind):
    """By how much the price of a security of a board may change, and its lot."""
    return [source.choice(PRICE_STEPS[kind].split()), source.choice(LOTS.get(kind, [1]))]


def rows(boards, source, step_source):
    pool = list(issuers(source))
    weight = {"S": 3, "F": 2, "O": 4, "B": 1, "I": 1}
    shares = [weight[board["sectype"]] for board in boards]
    counts = [COUNT * share // sum(shares) for share in shares]
    counts[0] += COUNT - sum(counts)
    sec_id = 100000
    for board, count in zip(boards, counts):
        offset = source.randrange(len(pool))
        series = {"F": 12, "O": 24, "B": 3}.get(board["sectype"], 1)
        for number in range(count):
            issuer = pool[(offset + number // series) % len(pool)]
            code, name = security(source, board["sectype"], issuer, number % series)
            sec_id += source.randint(1, 9)
            session = source.choices([1, 2, 3], [8, 2, 1])[0]
            yield [board["stock_id"], board["board_id"], sec_id, code, name, issuer[0], session,
                   *steps(step_source, board["sectype"])]


def main():
    with open(HERE / "boards.csv", encoding="utf-8", newline="") as file:
        boards = list(csv.DictReader(file))
    with open(HERE / "securities.csv", "w", encoding="utf-8", newline="") as file:
        writer = csv.writer(file, lineterminator="\n")
        writer.writerow("stock_id board_id sec_id sec_code sec_name base_code sess_id price_step lot"
                        .split())
        writer.writerows(rows(boards, random.Random(20), random.Random(21)))


main()
