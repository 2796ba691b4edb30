# SPDX-License-Identifier: BSD-3-Clause
"""replacer.py make|replace FOLDER WAY: makes the reference database of the folder, with others to
take its place; or puts them there, in every way or, for the way "logged", in transactions beside a
write-ahead log alone, until its input ends. Prints how often.

Each text, and the number of the session, is the generation @; the partner knows how many securities
there are (#)."""
import os
import random
import select
import shutil
import sqlite3
import sys
import time

CREATE = """CREATE TABLE stocks (stock_id, stock_code, name);
INSERT INTO stocks VALUES (1, '@', '@');
CREATE TABLE boards (stock_id, board_id, board_code, name, sectype, flags, position);
INSERT INTO boards VALUES (1, 7, '@', '@', NULL, 0, 0);
CREATE TABLE securities (stock_id, board_id, sec_id, sec_code, sec_name, base_code, sess_id);
WITH RECURSIVE n(i) AS (SELECT # UNION ALL SELECT i - 1 FROM n WHERE i > 1)
INSERT INTO securities SELECT 1, 7, i, '@', '@', '@', 1 FROM n;
CREATE TABLE "gx.diler" (mox_code, client_code, name);
INSERT INTO "gx.diler" VALUES ('@', '#', '@');
CREATE TABLE sessions (stock_id, sess_id);
INSERT INTO sessions VALUES (1, @)"""
UPDATE = """UPDATE stocks SET stock_code = '@', name = '@';
UPDATE boards SET board_code = '@', name = '@';
UPDATE securities SET sec_code = '@', sec_name = '@', base_code = '@';
UPDATE "gx.diler" SET mox_code = '@', name = '@';
UPDATE sessions SET sess_id = @"""
job, folder, way = sys.argv[1:]
reference = folder + "/reference"
others = [f"{folder}/{generation}" for generation in range(10, 16)]


def change(file, statements, generation, pause=0.0, pragma="wal_autocheckpoint = 1"):
    database = sqlite3.connect(file, timeout=60, isolation_level=None)
    for statement in ["PRAGMA synchronous = OFF", "PRAGMA " + pragma, "BEGIN IMMEDIATE"]:
        database.execute(statement).fetchall()
    for statement in statements.split(";\n"):
        database.execute(statement.replace("@", str(generation))
                         .replace("#", str(1000 + 40 * generation)))
    time.sleep(pause)
    database.execute("COMMIT")
    database.close()


def transact():
    change(reference, UPDATE, random.randrange(20, 90), random.random() / 50 if len(ways) > 1 else 0)


def rename():
    shutil.copyfile(random.choice(others), reference + ".next")
    os.rename(reference + ".next", reference)


def write_over():  # as a copying program does, piece by piece
    with open(random.choice(others), "rb") as other, open(reference, "r+b", 0) as file:
        for piece in iter(lambda: other.read(8192), b""):
            file.write(piece)
        file.truncate()


def spoil():  # for a moment it is cut short, or gone
    if count % 2:
        os.truncate(reference, random.randrange(os.path.getsize(reference)))
    else:
        os.remove(reference)
    time.sleep(random.random() / 20)
    rename()


random.seed(1)
if job == "make":
    for other in others:
        if not os.path.exists(other):
            change(other, CREATE, int(other[-2:]))
    rename()
    if way == "logged":
        change(reference, UPDATE, 10, 0, "journal_mode = WAL")
    sys.exit()
count = 0
ways = [transact] if way == "logged" else [rename, write_over, transact, spoil, spoil]
while not select.select([sys.stdin], [], [], 0.001 if way == "logged" else random.random() / 8)[0]:
    ways[count % len(ways)]()
    count += 1
print(count)
