"""Orders what runs low: load, query, edit, save, validate.

    restock.py FILE SCHEMA OUTPUT
"""

import sys

import tessel

STOCK = "urn:stock"


def main(file, schema, output):
    with tessel.Document.load(file, schemas={STOCK: schema}, places=True) as stock:
        stock.bind("s", STOCK)
        print(f"{stock.number('sum(//s:count)'):.0f} pieces")
        for item in stock.select("/s:stock/s:item[s:count < 10]"):
            count = item.first("s:count")
            print(f"{count.place.line}: {item.first('s:name').text}: {count.text} -> 10")
            count.text = "10"
        new = stock.root.add("item", id="d1")
        new.add("name", "Drill")
        new.add("count", "4")
        stock.save(output)
    check(output, schema)


def check(file, schema):
    try:
        with tessel.Document.load(file, schemas={STOCK: schema}):
            print("valid")
    except tessel.Error as error:
        print(f"not valid: {error}")


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main(*sys.argv[1:])
