-- tables of the library
BEGIN;
CREATE TABLE author (
    id      INTEGER PRIMARY KEY,
    name    VARCHAR(80) NOT NULL,
    born    DATE
);
CREATE TABLE book (
    id      INTEGER PRIMARY KEY,
    author  INTEGER NOT NULL REFERENCES author (id),
    title   VARCHAR(200) NOT NULL,
    price   NUMERIC(8, 2) CHECK (price >= 0)
);
CREATE INDEX book_author ON book (author);
COMMIT;
