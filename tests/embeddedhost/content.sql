-- Two exchanges, three boards, 2,000 securities. Every text ends in the tag @. No column has a type
-- or a constraint, so that faults can be planted.
CREATE TABLE stocks (name, stock_code, stock_id);
INSERT INTO stocks VALUES ('Beta @', 'XB@', 2), ('Alpha @', 'XA@', 1);
CREATE TABLE boards (extra, stock_id, board_id, board_code, name, sectype, flags, position);
INSERT INTO boards VALUES (0, 2, 7, 'B7@', 'Seven @', 'S', 5, 1),
    (0, 1, 9, 'B9@', 'Nine @', 'F', 8589934592, 0), (0, 1, 7, 'B7@', '', NULL, NULL, NULL);
CREATE TABLE securities (stock_id, board_id, sec_id, sec_code, sec_name, base_code, sess_id);
WITH RECURSIVE n(i) AS (SELECT 2000 UNION ALL SELECT i - 1 FROM n WHERE i > 1)
    INSERT INTO securities SELECT 2, 7, i, 'C' || i || '@', 'Name @', 'BASE@', 1 FROM n;
CREATE TABLE "gx.diler" (mox_code, client_code, name);
INSERT INTO "gx.diler" VALUES ('M1', NULL, 'Partner @');
CREATE TABLE sessions (stock_id, sess_id);
INSERT INTO sessions VALUES (2, 2147483647), (2, -2147483648)
