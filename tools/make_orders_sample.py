#!/usr/bin/env python3
"""Makes tests/data/orders_sample.csv: 500 lines of invented orders with the oddities of a planner's real export.

    python3 tools/make_orders_sample.py > tests/data/orders_sample.csv

The same seed gives the same file. The oddities: blanks around some column names, dates in three columns of numbers, a year-month
in one number, "  -  " for an empty discount, apostrophes, commas and quotes in names, letters beyond ASCII, characters that an
earlier conversion lost (U+FFFD), a department that sells in few months only, an order's lines far apart, no blank line at the end.
"""

import csv
import datetime
import io
import random
import sys

SEED = 20150101
LINES = 500
FIRST, LAST = datetime.date(2015, 1, 1), datetime.date(2017, 12, 31)

HEADER = ["Order ID ", " Order Item ID ", " Order YearMonth ", " Order Year ", " Order Month ", " Order Day ", "Order Time",
          "Order Quantity", "Product Department", "Product Category", "Product Name", " Customer ID ", "Customer Market",
          "Customer Region", "Customer Country", "Warehouse Country", "Shipment Year", "Shipment Month", "Shipment Day",
          "Shipment Mode", " Shipment Days - Scheduled ", " Gross Sales ", " Discount % ", " Profit "]

# Department, category, product, price, profit, how often.
PRODUCTS = [
    ("Fan Shop", "Fishing", "Rod & Reel Travel Set", 400, 200, 30),
    ("Fan Shop", "Water Sports", "Men's Neoprene Life Vest", 50, 25, 36),
    ("Fan Shop", "Indoor/Outdoor Games", "Table Tennis, folding", 120, 61, 30),
    ("Fan Shop", "Camping & Hiking", 'Tent "Fjäll" for 2', 300, 147, 28),
    ("Apparel", "Cleats", "Kids' Firm Ground Cleat", 60, 31, 44),
    ("Apparel", "Men's Footwear", "Men's Trail Shoe 4.0+", 130, 65, 40),
    ("Golf", "Women's Apparel", "Women's Cotton Polo", 50, 24, 36),
    ("Golf", "Women's Golf Clubs", 'Putter 34", left', 170, 84, 8),
    ("Footwear", "Cardio Equipment", "Men's Running Shoe", 100, 48, 26),
    ("Footwear", "Electronics", "Step Counter", 40, 18, 6),
    ("Outdoors", "Trade-In", "Range Finder 600 yd", 210, 97, 10),
    ("Outdoors", "Garden", "Müllers Gartenstuhl", 90, 43, 9),
    ("Fitness", "Baseball & Softball", "Batting Tee", 35, 12, 6),
    ("Discs Shop", "DVDs", "Yoga, Volume 2", 24, 11, 5),
    ("Technology", "Computers", 'Monitor 27"', 452, 219, 5),
    ("Pet Shop", "Pet Supplies", "Adult dog supplies", 84, 41, 4),
    ("Book Shop", "Books", "L'été à vélo", 31, 14, 3),
    ("Health and Beauty", "Health and Beauty", "Crème solaire", 29, 13, 2),
]

# Market, region, country, how often.
PLACES = [
    ("LATAM", "Central America", "Mexico", 24), ("LATAM", "Caribbean", "Dominican\ufffdRepublic", 7),
    ("LATAM", "South America", "Brazil", 14), ("LATAM", "South America", "Per\ufffd", 3),
    ("Europe", "Western Europe", "France", 22), ("Europe", "Western Europe", "Germany", 16),
    ("Europe", "Western Europe", "Österreich", 4), ("Europe", "Northern Europe", "United Kingdom", 13),
    ("Europe", "Southern Europe", "Italy", 8), ("Pacific Asia", "Oceania", "Australia", 12),
    ("Pacific Asia", "Eastern Asia", "China", 9), ("Pacific Asia", "Southeast Asia", "Indonesia", 7),
    ("North America", "West of USA", "USA", 24), ("North America", "Canada", "Canada", 3),
    ("Africa", "North Africa", "Algeria\ufffd", 4), ("Africa", "West Africa", "Cote d\ufffdIvoire", 4),
]

MODES = [("Standard Class", 4, 58), ("Second Class", 2, 20), ("First Class", 1, 16), ("Same Day", 3, 6)]  # name, days, how often

# These sell in a few months only; the other months must still have their place in a picture.
SEASONS = {"Pet Shop": (1, 2), "Book Shop": (11, 12), "Health and Beauty": (7,)}


def choose(chance, rows):
    """One of `rows`, each as often as its last item says."""
    return chance.choices(rows, weights=[row[-1] for row in rows])[0]


def order_date(chance, department):
    while True:
        date = FIRST + datetime.timedelta(days=chance.randrange((LAST - FIRST).days + 1))
        if date.month in SEASONS.get(department, range(1, 13)):
            return date


def make_line(chance, order, item):
    department, category, product, price, profit, _ = choose(chance, PRODUCTS)
    market, region, country, _ = choose(chance, PLACES)
    mode, days, _ = choose(chance, MODES)
    ordered = order_date(chance, department)
    shipped = min(ordered + datetime.timedelta(days=chance.randint(0, days + 2)), LAST)
    discount = chance.choice(["  -  "] + [f"{percent / 100:g}" for percent in range(1, 26)])
    return [order, item, f"{ordered.year}{ordered.month:02}", ordered.year, ordered.month, ordered.day,
            f"{chance.randrange(24):02}:{chance.randrange(60):02}", chance.choice([1, 1, 1, 2, 3, 4, 5]), department, category,
            product, chance.randint(100, 12000), market, region, country, chance.choice(["USA", "USA", "Puerto Rico"]),
            shipped.year, shipped.month, shipped.day, mode, days, price, discount, profit]


def main():
    chance = random.Random(SEED)
    lines, order, item = [], 3000, 8000
    for _ in range(LINES):
        order += chance.choice([0, 0, 7, 31, 118])
        item += chance.randint(1, 180)
        lines.append(make_line(chance, order, item))
    lines.sort(key=lambda line: line[10])  # by product, as exported; an order's lines stand apart
    text = io.StringIO()
    csv.writer(text, lineterminator="\n").writerows([HEADER, *lines])
    sys.stdout.buffer.write(text.getvalue().rstrip("\n").encode())


if __name__ == "__main__":
    main()
