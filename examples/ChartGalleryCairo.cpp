// Draws the pictures of docs/gallery: bars and lines of few and many series, in small and large pictures.
//
//   ChartGalleryCairo [folder]        the folder is made if needed; "gallery" if none is given
//
// Values come from a fixed little formula, so that each run draws the same pictures.
#include <cmath>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "host/cairo/CairoDevice.h"
#include "platform/chart/BarSeries.h"
#include "platform/chart/Chart.h"
#include "platform/chart/LineSeries.h"
#include "platform/runtime/DateTime.h"

namespace {

using namespace vx;

struct TPicture {
  const char* name;
  bool bars;
  int seriesCount;
  int monthCount;
  TSize size;
  const char* title;
};

constexpr TPicture kPictures[] = {
    {"bars-1-series", true, 1, 12, {800, 450}, "Order quantity by month"},
    {"bars-5-series", true, 5, 12, {1200, 600}, "Order quantity by month and department"},
    {"bars-13-series", true, 13, 36, {1600, 800}, "Order quantity by month and department"},
    {"bars-gaps", true, 2, 18, {800, 450}, "Net change of stock, two months closed"},
    {"bars-small", true, 5, 12, {400, 250}, "Order quantity by month and department"},
    {"bars-smallest", true, 13, 36, {250, 150}, "Order quantity by month and department"},
    {"lines-1-series", false, 1, 36, {800, 450}, "Order quantity by month"},
    {"lines-5-series", false, 5, 36, {1200, 600}, "Order quantity by month and department"},
    {"lines-13-series", false, 13, 36, {1200, 600}, "Order quantity by month and department"},
    {"lines-gaps", false, 2, 18, {800, 450}, "Net change of stock, two months closed"},
    {"lines-smallest", false, 13, 36, {250, 150}, "Order quantity by month and department"},
    {"bars-4k", true, 5, 36, {3840, 2160}, "Order quantity by month and department"},
};

constexpr const char* kDepartments[] = {"Fan Shop",          "Apparel",    "Golf",       "Footwear", "Outdoors",
                                        "Fitness",           "Discs Shop", "Technology", "Pet Shop", "Book Shop",
                                        "Health and Beauty", "Garden",     "Others"};

double ValueOf(const TPicture& picture, int series, int month) {
  const double season = std::sin(month * 0.52 + series * 0.9) + 0.35 * std::sin(month * 1.7 + series * 2.3);
  const bool mayBeNegative = picture.monthCount == 18;
  return std::round(mayBeNegative ? 900 * season : 9000.0 / (series + 2) * (2.2 + season));
}

bool IsClosed(const TPicture& picture, int month) { return picture.monthCount == 18 && (month == 6 || month == 7); }

void FillChart(TCustomChart& chart, const TPicture& picture) {
  chart.Title().Text = picture.title;
  chart.LeftAxis().Title = "Pieces";
  for (int month = 0; month < picture.monthCount; ++month) {
    const TDateTime date = EncodeDate(2022 + month / 12, month % 12 + 1, 1);
    chart.BottomAxis().Items.push_back({date, FormatDateTime("mmm yyyy", date)});
  }
  for (int i = 0; i < picture.seriesCount; ++i) {
    TChartSeries* series =
        picture.bars ? static_cast<TChartSeries*>(New<TBarSeries>(&chart)) : New<TLineSeries>(&chart);
    series->SetTitle(kDepartments[i]);
    chart.AddSeries(series);
    for (int month = 0; month < picture.monthCount; ++month) {
      const double date = chart.BottomAxis().Items[static_cast<std::size_t>(month)].Value;
      if (IsClosed(picture, month))
        series->AddNull(date);
      else
        series->AddXY(date, ValueOf(picture, i, month));
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::filesystem::path folder = argc > 1 ? argv[1] : "gallery";
  std::filesystem::create_directories(folder);
  for (const TPicture& picture : kPictures) {
    const TOwned<TChart> chart = Make<TChart>(nullptr);
    FillChart(*chart, picture);
    TCairoDevice device(picture.size);
    TCanvas canvas(device);
    chart->Draw(canvas);
    device.SaveToFile((folder / (std::string(picture.name) + ".png")).string());
    std::cout << picture.name << ".png\n";
  }
}
