#!/usr/bin/env bash
# tools/demo.sh DIR: shows tables and draws a few charts of the sample orders into DIR with the program kestrix, and says where they are.
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
dir=${1:?where to draw is missing}
orders=$top/tests/data/orders_sample.csv
mkdir -p "$dir"

# picture NAME ARGUMENTS...: one chart of the orders' lines by order date.
picture() {
  local file=$dir/$1.png
  shift
  "$top/dev" run chart "$orders" --date "Order Year,Order Month,Order Day" "$@" -o "$file"
  printf '  %s\n' "$file"
}

echo "A look at the table behind the pictures:"
"$top/dev" run table "$orders" --columns "Order ID,Order Year,Order Month,Product Department,Order Quantity,Profit" --limit 8
echo
echo "The same by year and market:"
"$top/dev" run bucket "$orders" --date "Order Year,Order Month,Order Day" --by year --group "Customer Market" --count \
  --sum "Order Quantity" --sum Profit --average Profit --totals
echo
echo "Pictures of tests/data/orders_sample.csv:"
picture quantity_by_month --value "Order Quantity" --series "Product Department" --by month --title "Ordered pieces by month"
picture largest_departments --value "Gross Sales" --series "Product Department" --top 3 --by year --type bar \
  --title "Gross sales of the largest departments by year"
picture profit_by_week --value Profit --by week --title "Profit by week"
picture markets_by_year --value "Gross Sales" --series "Customer Market" --by year --type bar --title "Gross sales by market and year"
