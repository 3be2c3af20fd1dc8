"""Orders what runs low: load, query, edit, validate, save.

    restock.py FILE OUTPUT
"""

import sys

import tessel


def main(file, output):
    with tessel.Document.load(file, places=True) as stock:
        for item in stock.select("/stock/item[count < 10]"):
            count = item.first("count")
            print(f"{count.place.line}: {item.first('name').text}: {count.text} -> 10")
            count.text = "10"
        new = stock.root.add("item", id="d1")
        new.add("name", "Drill")
        new.add("count", "4")
        stock.save(output)
    check(output)


def check(file):
    try:
        with tessel.Document.load(file, validate=True):
            print("valid")
    except tessel.Error as error:
        print(f"not valid: {error}")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
