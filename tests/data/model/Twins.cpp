#include "Twins.h"

#include <algorithm>
#include <cstring>

#include "RandomValues.h"

namespace vx::naive {
namespace {

constexpr std::size_t kShownCalls = 30;

std::string NaiveRowText(const TRow& row) {
  std::string text = std::to_string(row.id) + "(";
  for (const TField& field : row.fields) text += " " + std::string(field.assigned ? "" : "null:") + ToText(field.bytes);
  return text + ")";
}

std::string Joined(const std::vector<std::string>& lines, const std::string& indent) {
  std::string text;
  for (const std::string& line : lines) text += indent + line + "\n";
  return text;
}

}  // namespace

TTwins::TTwins(const std::string& tableName) : naive(tableName), real(Make<TVXRAMTable>(nullptr)), buffer_(256) {
  real->SetName(tableName);
  TEngineLog::Lines().clear();
}

TTwins::~TTwins() {
  while (!cursors.empty()) Close(cursors.back());  // owners close their cursors before a table goes
}

// -- Cursors ---

TComponent* TTwins::NewOwner(TOwnerKind kind) {
  if (kind == TOwnerKind::None) return nullptr;
  if (kind == TOwnerKind::Listener)
    owners_.push_back(Make<TLoggingOwner>());
  else
    owners_.push_back(Make<TComponent>(nullptr));
  return owners_.back().get();
}

template <class Naive, class Real>
void TTwins::Open(const TCursorDesc& desc, Naive&& openNaive, Real&& openReal) {
  TCursorPair pair;
  pair.name = desc.name;
  TEngineLog::NextName() = desc.name;
  std::string text = "open " + desc.name + " index " + std::to_string(desc.indexNb) +
                     (desc.order == TOrder::Ascending ? " ascending" : " descending") + " sorted '" + desc.sortedField +
                     "'";
  if (desc.filterField != nullptr) text += " filter " + desc.filterField->name + " = " + ToText(desc.filterValue);
  Do(
      text, [&] { openNaive(pair); }, [&] { openReal(pair, NewOwner(desc.owner)); });
  if (pair.naive != nullptr && pair.real != nullptr) cursors.push_back(pair);
}

namespace {

TVXRAMFieldDef* RealField(const TTable& naive, const TVXRAMTable& real, const TFieldDef* field) {
  for (std::size_t i = 0; i < naive.fields.size(); ++i)
    if (naive.fields[i].get() == field) return real.Get_FieldDefs()->Get_Item(static_cast<std::int32_t>(i));
  return nullptr;
}

}  // namespace

void TTwins::OpenPlain(TCursorDesc desc) {
  const auto openNaive = [&](TCursorPair& pair) {
    auto cursor = std::make_unique<TCursor>(naive);
    cursor->Open(desc);
    pair.naive = cursor.get();
    naive.cursors.push_back(std::move(cursor));
  };
  const auto openReal = [&](TCursorPair& pair, TComponent* owner) {
    TVXRAMCursorDesc wish(owner, desc.indexNb, static_cast<TVXRAMCursorOrder>(desc.order), desc.sortedField,
                          RealField(naive, *real, desc.filterField), ToVariant(desc.filterValue));
    real->OpenCursor(TClassOf<TVXRAMCursor>::Of<TLogging<TVXRAMCursor>>(), &wish, pair.real);
  };
  Open(desc, openNaive, openReal);
}

void TTwins::OpenBucketer(TBucketerDesc desc) {
  const auto openNaive = [&](TCursorPair& pair) {
    auto cursor = std::make_unique<TBucketer>(naive);
    cursor->OpenBuckets(desc);
    pair.naive = pair.naiveBucketer = cursor.get();
    naive.cursors.push_back(std::move(cursor));
  };
  const auto openReal = [&](TCursorPair& pair, TComponent* owner) {
    const auto defs = Make<TVXBucketFieldDefs>(nullptr);
    for (const auto& [fieldName, type] : desc.bucketFieldDefs) defs->Add(fieldName, static_cast<TVXBucketType>(type));
    TVXRAMCursorBucketerDesc wish(owner, desc.indexNb, static_cast<TVXRAMCursorOrder>(desc.order), desc.sortedField,
                                  RealField(naive, *real, desc.filterField), ToVariant(desc.filterValue), defs.get(),
                                  static_cast<TVXGroupMode>(desc.basedGroupMode),
                                  static_cast<TVXGroupMode>(desc.groupMode), desc.bucketedFields, desc.byStartOfGroup);
    real->OpenCursor(TClassOf<TVXRAMCursor>::Of<TLogging<TVXRAMCursorBucketer>>(), &wish, pair.real);
    pair.realBucketer = Cast<TVXRAMCursorBucketer>(pair.real);
  };
  Open(desc, openNaive, openReal);
}

void TTwins::Close(TCursorPair& pair) {
  TVXRAMCursor* variable = pair.real;
  Do(
      "close " + pair.name, [&] { naive.Close(pair.naive); }, [&] { real->CloseCursor(variable); });
  if (variable != nullptr) difference_ = "a closed cursor's variable isn't null";
  cursors.remove_if([&](const TCursorPair& each) { return &each == &pair; });
}

TRecordFilterObject& TTwins::NewFilterObject(const TCursorPair& pair, std::int32_t salt) {
  filterObjects_.push_back({real.get(), pair.name, salt});
  return filterObjects_.back();
}

// -- Comparing ---

std::string TTwins::Difference() {
  std::string difference = std::move(difference_);
  difference_.clear();
  const std::string logs = CompareLogs();
  if (difference.empty()) difference = logs;
  TRowPairs known;
  if (difference.empty()) difference = CompareTable(known);
  for (const TCursorPair& pair : cursors)
    if (difference.empty()) difference = CompareCursor(pair, known);
  return difference;
}

std::string TTwins::CompareLogs() {
  std::string difference;
  if (naive.log != TEngineLog::Lines())
    difference =
        "notifications:\n model\n" + Joined(naive.log, "    ") + " engine\n" + Joined(TEngineLog::Lines(), "    ");
  naive.log.clear();
  TEngineLog::Lines().clear();
  return difference;
}

std::string TTwins::CompareTable(TRowPairs& known) {
  if (real->Get_RecCount() != naive.RecCount()) return "counts of the base index";
  const std::string lists = CompareLists("main list", naive.mainList, *real->Get_MainRecordList(), known) +
                            CompareLists("base index", naive.baseIndex, *real->Get_BaseIndex()->Get_List(), known);
  if (!lists.empty()) return lists;
  for (std::size_t i = 0; i < naive.indexes.size(); ++i) {
    const TVXRAMIndexDef* def = real->Get_Indices()->Get_Item(static_cast<std::int32_t>(i));
    const std::string difference =
        CompareLists("index " + std::to_string(i), naive.indexes[i]->rows, *def->Get_Index()->Get_List(), known);
    if (!difference.empty()) return difference;
  }
  // Dropped rows that an open bucketer names are kept a while.
  const bool anyBucketer =
      std::any_of(cursors.begin(), cursors.end(), [](const auto& pair) { return pair.naiveBucketer != nullptr; });
  if (!anyBucketer && real->Get_AllocatedRows() != naive.AllocatedRows())
    return "rows allocated: " + std::to_string(real->Get_AllocatedRows()) + ", the model " +
           std::to_string(naive.AllocatedRows());
  return real->CheckRows();
}

std::string TTwins::CompareCursor(const TCursorPair& pair, TRowPairs& known) {
  TCursor& model = *pair.naive;
  const TVXRAMCursor& engine = *pair.real;
  const std::string lists =
      CompareLists(pair.name, model.ActiveRecordList(), *engine.Get_ActiveRecordList(), known) +
      CompareLists(pair.name + "'s source", model.InternalRecordList(), *engine.Get_InternalRecordList(), known);
  if (!lists.empty()) return lists;
  const std::string buckets = pair.naiveBucketer != nullptr ? CompareBuckets(pair, known) : "";
  if (!buckets.empty()) return buckets;
  if (model.physicalIndex != engine.Get_PhysicalIndex())
    return pair.name + " stands at " + std::to_string(engine.Get_PhysicalIndex()) + ", the model at " +
           std::to_string(model.physicalIndex);
  if (model.RecIndex() != engine.Get_RecIndex()) return pair.name + ": record index";
  if (model.Eof() != engine.Get_EOF() || model.Bof() != engine.Get_BOF()) return pair.name + ": ends";
  if (model.EffectiveRecordIndex() != engine.Get_EffectiveRecordIndex()) return pair.name + ": effective index";
  if (model.IsUpdating() != engine.Get_IsUpdating()) return pair.name + ": bracket";
  if (model.sortedField != engine.Get_SortedField()) return pair.name + ": sort specification";
  if (model.IsFiltered() != engine.Get_IsFiltered()) return pair.name + ": filtered or not";
  const std::string expected = Outcome([&] { return model.RecordID(); });
  const std::string got = Outcome([&] { return engine.Get_RecordID(); });
  return expected == got ? "" : pair.name + " is on " + got + ", the model on " + expected;
}

std::string TTwins::CompareBuckets(const TCursorPair& pair, TRowPairs& known) {
  const TBucketer& model = *pair.naiveBucketer;
  const TVXRAMBucketList& engine = *pair.realBucketer->Get_BucketList();
  const std::string lists =
      CompareLists(pair.name + "'s virtual rows", model.virtualRows, *engine.Get_BucketRecords(), known);
  if (!lists.empty()) return lists;
  if (static_cast<std::int32_t>(model.buckets.size()) != engine.Count()) return pair.name + ": count of buckets";
  for (std::size_t i = 0; i < model.buckets.size(); ++i) {
    const TBucket& expected = *model.buckets[i];
    const TVXRAMBucketInfo& got = *engine.Get_Bucket(static_cast<std::int32_t>(i));
    const std::string what = pair.name + "'s bucket '" + expected.key + "'";
    if (got.Get_Key() != expected.key) return what + " is '" + got.Get_Key() + "'";
    const std::string difference = CompareRow(*expected.row, got.Get_BucketRecord(), known) +
                                   CompareLists(what, expected.records, *got.Get_Records(), known);
    if (!difference.empty()) return what + ": " + difference;
  }
  return {};
}

std::string TTwins::CompareLists(const std::string& what, const TRows& expected, const TVXList& got, TRowPairs& known) {
  if (static_cast<std::int32_t>(expected.size()) != got.Count())
    return what + " has " + std::to_string(got.Count()) + " rows, the model " + std::to_string(expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const auto* row = static_cast<const TVXRAMRow*>(got.Items(static_cast<std::int32_t>(i)));
    const std::string difference = CompareRow(*expected[i], row, known);
    if (!difference.empty()) return what + " at " + std::to_string(i) + ": " + difference;
  }
  return {};
}

std::string TTwins::CompareRow(const TRow& expected, const TVXRAMRow* got, TRowPairs& known) {
  if (got == nullptr) return "no row";
  const auto [at, isNew] = known.emplace(got, &expected);
  if (!isNew) return at->second == &expected ? "" : "another row, " + RealRowText(got);
  bool same = real->InternalGetRecordID(got) == expected.id;
  for (std::size_t i = 0; same && i < naive.fields.size(); ++i) {
    const auto field = static_cast<std::int32_t>(i);
    const TField value = naive.Read(expected, i);
    real->InternalGetFieldValue(got, field, buffer_.data());
    same = (real->InternalGetFieldStatus(got, field) == vxfsAssigned) == value.assigned &&
           std::equal(value.bytes.begin(), value.bytes.end(), buffer_.begin());
  }
  return same ? "" : "row " + RealRowText(got) + ", the model's " + NaiveRowText(expected);
}

// -- Telling ---

std::string TTwins::RealRowText(const TVXRAMRow* row) const {
  TRow copy;
  copy.id = real->InternalGetRecordID(row);
  for (std::size_t i = 0; i < naive.fields.size(); ++i) {
    const auto field = static_cast<std::int32_t>(i);
    TField value{real->InternalGetFieldStatus(row, field) == vxfsAssigned,
                 TBytes(static_cast<std::size_t>(naive.fields[i]->size))};
    real->InternalGetFieldValue(row, field, value.bytes.data());
    copy.fields.push_back(value);
  }
  return NaiveRowText(copy);
}

std::string TTwins::Report() const {
  std::string text = "  fields:";
  for (const auto& field : naive.fields)
    text += " " + field->name + ":" + std::to_string(static_cast<int>(field->type)) + "/" + std::to_string(field->size);
  text += "\n  latest calls:\n";
  const std::size_t first = history_.size() > kShownCalls ? history_.size() - kShownCalls : 0;
  for (std::size_t i = first; i < history_.size(); ++i) text += "    " + history_[i] + "\n";
  const auto tell = [&](const std::string& what, const TRows& rows, const TVXList& list) {
    text += "  " + what + "\n    model: ";
    for (const TRow* row : rows) text += " " + NaiveRowText(*row);
    text += "\n    engine:";
    for (std::int32_t i = 0; i < list.Count(); ++i)
      text += " " + RealRowText(static_cast<const TVXRAMRow*>(list.Items(i)));
    text += "\n";
  };
  tell("main list", naive.mainList, *real->Get_MainRecordList());
  tell("base index", naive.baseIndex, *real->Get_BaseIndex()->Get_List());
  for (std::size_t i = 0; i < naive.indexes.size(); ++i) {
    const TVXRAMIndexDef* def = real->Get_Indices()->Get_Item(static_cast<std::int32_t>(i));
    tell("index " + def->Get_FieldName(), naive.indexes[i]->rows, *def->Get_Index()->Get_List());
  }
  for (const TCursorPair& pair : cursors)
    tell(pair.name + ", model at " + std::to_string(pair.naive->physicalIndex) + ", engine at " +
             std::to_string(pair.real->Get_PhysicalIndex()),
         pair.naive->ActiveRecordList(), *pair.real->Get_ActiveRecordList());
  return text;
}

}  // namespace vx::naive
