#include "MasterDetail.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <numeric>
#include <ostream>
#include <sstream>
#include <utility>

#include "ColumnNames.h"
#include "InputFile.h"
#include "Interrupt.h"
#include "JsonText.h"
#include "UserError.h"
#include "platform/dataset/DataLink.h"

namespace vx::kestrix {

namespace {

using TRow = std::vector<TCellValue>;

/// A file's records in a table of their own.
struct TSide {
  TColumnPlan plan;
  std::size_t on = 0;
  TOwned<TVXRAMTable> table;
};

// -- The formats ------------------------------------------------------------------------------------------------------

class IPairWriter {
 public:
  virtual ~IPairWriter() = default;
  virtual void Master(const TRow& master, const std::vector<TRow>& details) = 0;
  virtual void End() {}
};

class TBlockWriter : public IPairWriter {
 public:
  TBlockWriter(std::ostream& out, std::vector<TWrittenColumn> master, std::vector<TWrittenColumn> detail)
      : out_(out), master_(std::move(master)), detail_(std::move(detail)) {}

  void Master(const TRow& master, const std::vector<TRow>& details) override {
    if (!std::exchange(isFirst_, false)) out_ << '\n';
    for (std::size_t i = 0; i < master.size(); ++i)
      out_ << (i > 0 ? ", " : "") << OneLine(master_[i].heading) << ": " << OneLine(CellText(master[i]));
    out_ << '\n';
    if (details.empty())
      out_ << "  (no records)\n";
    else
      WriteDetails(details);
  }

 private:
  void WriteDetails(const std::vector<TRow>& details) {
    std::ostringstream text;
    const auto writer = MakeTableWriter(TTableFormat::Table, text);
    writer->Begin(detail_);
    for (const TRow& row : details) writer->Row(row);
    writer->End();
    std::istringstream lines(text.str());
    for (std::string line; std::getline(lines, line);) out_ << (line.empty() ? "" : "  ") << line << '\n';
  }

  std::ostream& out_;
  std::vector<TWrittenColumn> master_;
  std::vector<TWrittenColumn> detail_;
  bool isFirst_ = true;
};

class TJoinWriter : public IPairWriter {
 public:
  TJoinWriter(std::unique_ptr<ITableWriter> writer, std::vector<TWrittenColumn> master,
              const std::vector<TWrittenColumn>& detail)
      : writer_(std::move(writer)), width_(master.size() + detail.size()) {
    std::vector<TWrittenColumn> columns = std::move(master);
    columns.insert(columns.end(), detail.begin(), detail.end());
    std::vector<std::string_view> names;
    for (const TWrittenColumn& column : columns) names.push_back(column.heading);
    const std::vector<std::string> unique = HeadingsOf(names);
    for (std::size_t i = 0; i < columns.size(); ++i) columns[i].heading = unique[i];
    writer_->Begin(columns);
  }

  void Master(const TRow& master, const std::vector<TRow>& details) override {
    if (details.empty()) Write(master, {});
    for (const TRow& detail : details) Write(master, detail);
  }
  void End() override { writer_->End(); }

 private:
  void Write(TRow row, const TRow& detail) {
    row.insert(row.end(), detail.begin(), detail.end());
    row.resize(width_);
    writer_->Row(row);
  }

  std::unique_ptr<ITableWriter> writer_;
  std::size_t width_;
};

class TNestedWriter : public IPairWriter {
 public:
  TNestedWriter(std::ostream& out, const std::vector<TWrittenColumn>& master, const std::vector<TWrittenColumn>& detail)
      : out_(out), master_(KeysOf(master, true)), detail_(KeysOf(detail, false)) {}

  void Master(const TRow& master, const std::vector<TRow>& details) override {
    out_ << (std::exchange(isFirst_, false) ? "[\n{" : ",\n{");
    WriteValues(master_, master);
    out_ << (master.empty() ? "" : ", ") << master_.back() << ": [";
    for (std::size_t i = 0; i < details.size(); ++i) {
      out_ << (i > 0 ? ",\n  {" : "\n  {");
      WriteValues(detail_, details[i]);
      out_ << '}';
    }
    out_ << "]}";
  }
  void End() override { out_ << (isFirst_ ? "[]\n" : "\n]\n"); }

 private:
  /// With one more for the list, if there is one.
  static std::vector<std::string> KeysOf(const std::vector<TWrittenColumn>& columns, bool hasList) {
    std::vector<std::string_view> names;
    for (const TWrittenColumn& column : columns) names.push_back(column.heading);
    if (hasList) names.emplace_back("Records");
    std::vector<std::string> keys;
    for (const std::string& name : HeadingsOf(names)) keys.push_back(JsonText(name));
    return keys;
  }

  void WriteValues(const std::vector<std::string>& keys, const TRow& row) {
    for (std::size_t i = 0; i < row.size(); ++i) out_ << (i > 0 ? ", " : "") << keys[i] << ": " << JsonValue(row[i]);
  }

  std::ostream& out_;
  std::vector<std::string> master_;
  std::vector<std::string> detail_;
  bool isFirst_ = true;
};

std::unique_ptr<IPairWriter> MakePairWriter(TTableFormat format, std::ostream& out, std::vector<TWrittenColumn> master,
                                            std::vector<TWrittenColumn> detail) {
  if (format == TTableFormat::Table) return std::make_unique<TBlockWriter>(out, std::move(master), std::move(detail));
  if (format == TTableFormat::Json) return std::make_unique<TNestedWriter>(out, master, detail);
  return std::make_unique<TJoinWriter>(MakeTableWriter(format, out), std::move(master), detail);
}

// -- Loading ----------------------------------------------------------------------------------------------------------

/// How the master is read: as the table is, but for what each file finds out for itself. Values that join must be of
/// one type, that of the table's column.
TInputOptions MasterInput(const TTableOptions& options) {
  TInputOptions input = options.input;
  input.files = {options.master.value_or(std::string())};
  input.csv.separator.reset();
  input.csv.hasHeader.reset();
  input.wishes.types.clear();
  return input;
}

/// The joining column of one of the files.
std::size_t NeedJoin(const TCsvSource& source, const std::string& on) try {
  return NeedHeading(source.Headings(), on);
} catch (const EUserError& error) {
  throw EUserError({source.Name(), 0, {}}, "--on: " + error.Message());
}

TSide LoadMaster(const TTableOptions& options, const TStreams& streams, TColumnType type) {
  TInputOptions input = MasterInput(options);
  TInputs inputs(input, streams);
  TSide side;
  side.on = NeedJoin(inputs.Source(), options.on);
  input.wishes.types = {{inputs.Source().Headings()[side.on], type}};
  side.plan = PlanColumns(inputs.Source(), input.wishes);
  side.table = LoadTable(inputs.Source(), side.plan, input.limits);
  inputs.TellSkipped();
  return side;
}

std::vector<std::string> AllPaths(const TTableOptions& options) {
  std::vector<std::string> paths = PathsOf(options.input);
  paths.push_back(options.master.value_or(std::string()));
  if (std::count(paths.begin(), paths.end(), std::string(kStandardInput)) > 1)
    throw EUserError("--master and the table cannot both be standard input");
  return paths;
}

TRow RowOf(const TRecordSet<TVXMemoryDataset>& records, const std::vector<std::size_t>& columns) {
  TRow row;
  for (const std::size_t column : columns) row.push_back(records.Value(column));
  return row;
}

}  // namespace

void RunMasterDetail(const TTableOptions& options, const TStreams& streams) {
  TResult result(options.output, AllPaths(options), streams);
  TInputs inputs(options.input, streams);
  TSide detail;
  detail.plan = PlanColumns(inputs.Source(), options.input.wishes);
  detail.on = NeedJoin(inputs.Source(), options.on);
  TQuery query = ResolveQuery(options, detail.plan);
  if (options.columns.empty()) query.columns.erase(query.columns.begin() + static_cast<std::ptrdiff_t>(detail.on));
  detail.table = LoadTable(inputs.Source(), detail.plan, options.input.limits, query.index);
  inputs.TellSkipped();
  const TSide master = LoadMaster(options, streams, detail.plan.columns[detail.on].type);

  const auto masters = Make<TRecordSet<TVXMemoryDataset>>(*master.table, master.plan, std::vector{master.on});
  const auto details = Make<TQuerySet>(*detail.table, detail.plan, std::vector{detail.on}, /*isDetail=*/true);
  const auto source = Make<TDataSource>(nullptr);
  details->OpenQuery(query);
  source->SetDataSet(masters.get());
  details->SetDetailField(detail.plan.columns[detail.on].field);
  details->SetMasterSource(source.get());
  details->SetMasterField(master.plan.columns[master.on].field);

  std::vector<std::size_t> columns(master.plan.columns.size());
  std::iota(columns.begin(), columns.end(), std::size_t{0});
  const auto writer = MakePairWriter(options.format, result.Out(), WrittenColumnsOf(master.plan, columns),
                                     WrittenColumnsOf(detail.plan, query.columns));
  const std::size_t most = options.limit.value_or(std::numeric_limits<std::size_t>::max());
  for (masters->Open(); !masters->Eof(); masters->Next()) {
    CheckInterrupt();
    std::vector<TRow> rows;
    const bool joins = !IsNull(masters->Value(master.on));
    for (details->First(); joins && !details->Eof() && rows.size() < most; details->Next())
      rows.push_back(RowOf(*details, query.columns));
    writer->Master(RowOf(*masters, columns), rows);
  }
  writer->End();
  result.Finish();
}

}  // namespace vx::kestrix
