#include "platform/component/Filer.h"

#include <limits>

#include "platform/component/Component.h"
#include "platform/component/NameTable.h"
#include "platform/runtime/Strings.h"

namespace vx {

namespace {

/// How a Variant of another kind than a plain value would give back is written: as a list that begins with the kind.
constexpr TVariantKind kTaggedKinds[] = {vkByte, vkSmallint, vkWord, vkInt64, vkDate, vkArray};

constexpr const char* kUnassigned = "Unassigned";
constexpr const char* kNull = "Null";

}  // namespace

// -- TReader ----------------------------------------------------------------------------------------------------------

namespace {

std::size_t EndOfValue(std::string_view stream, std::size_t offset) {
  TStreamCursor cursor(stream);
  cursor.Seek(offset);
  cursor.SkipValue();
  return cursor.Offset();
}

}  // namespace

TReader::TReader(std::string_view stream, std::size_t offset) : cursor_(stream.substr(0, EndOfValue(stream, offset))) {
  cursor_.Seek(offset);
}

void TReader::FailKind(const char* wanted) const {
  cursor_.Fail(cursor_.Offset(), std::string(wanted) + " is wanted here");
}

void TReader::Want(TStreamKind kind, const char* wanted) const {
  if (NextValue() != kind) FailKind(wanted);
}

std::int64_t TReader::ReadInt64() {
  if (NextValue() < skInt8 || NextValue() > skInt64) FailKind("a whole number");
  return cursor_.Int();
}

std::int32_t TReader::ReadInteger() {
  const std::size_t begin = cursor_.Offset();
  const std::int64_t value = ReadInt64();
  if (value < std::numeric_limits<std::int32_t>::min() || value > std::numeric_limits<std::int32_t>::max())
    cursor_.Fail(begin, std::to_string(value) + " is beyond 32 bits");
  return static_cast<std::int32_t>(value);
}

bool TReader::ReadBoolean() {
  if (NextValue() != skIdent) FailKind("True or False");
  const std::size_t begin = cursor_.Offset();
  const std::string_view name = cursor_.Ident();
  if (IsSameName(name, "True")) return true;
  if (!IsSameName(name, "False")) cursor_.Fail(begin, "True or False is wanted here");
  return false;
}

double TReader::ReadFloat() {
  if (NextValue() == skDouble) return cursor_.Double();
  if (NextValue() < skInt8 || NextValue() > skInt64) FailKind("a number");
  return static_cast<double>(cursor_.Int());
}

std::string TReader::ReadString() {
  if (NextValue() != skShortText && NextValue() != skLongText) FailKind("a text");
  return std::string(cursor_.Text());
}

std::string TReader::ReadIdent() {
  Want(skIdent, "a name");
  return std::string(cursor_.Ident());
}

std::vector<std::string> TReader::ReadSet() {
  Want(skSet, "a set");
  cursor_.TakeKind();
  std::vector<std::string> members;
  for (std::string_view each = cursor_.Identifier(true); !each.empty(); each = cursor_.Identifier(true))
    members.emplace_back(each);
  return members;
}

std::string TReader::ReadBinary() {
  Want(skBinary, "a block of bytes");
  return std::string(cursor_.Binary());
}

void TReader::ReadListBegin() {
  Want(skList, "a list");
  cursor_.TakeKind();
  ++lists_;
}

void TReader::ReadListEnd() {
  if (lists_ == 0) FailKind("no end of a list");
  while (!cursor_.TakeEnd()) cursor_.SkipValue();
  --lists_;
}

void TReader::SkipValue() {
  if (NextValue() == skEnd) FailKind("a value");
  cursor_.SkipValue();
}

Variant TReader::ReadVariant() {
  switch (NextValue()) {
    case skInt8:
    case skInt16:
    case skInt32:
      return ReadInteger();
    case skInt64:
      return ReadInt64();
    case skDouble:
      return ReadFloat();
    case skShortText:
    case skLongText:
      return ReadString();
    case skList:
      return ReadTagged();
    case skIdent:
      break;
    default:
      FailKind("a variant's value");
  }
  const std::size_t begin = cursor_.Offset();
  const std::string_view name = cursor_.Ident();
  if (IsSameName(name, kNull)) return Variant::Null();
  if (IsSameName(name, kUnassigned)) return {};
  if (IsSameName(name, "True") || IsSameName(name, "False")) return IsSameName(name, "True");
  cursor_.Fail(begin, std::string(name) + " is no variant's value: True, False, Null and Unassigned are");
}

/// "(Date 45351.5)", "(Array 1 'x')".
Variant TReader::ReadTagged() {
  ReadListBegin();
  const std::size_t begin = cursor_.Offset();
  const std::string name = ReadIdent();
  TVariantKind kind = vkUnassigned;
  for (const TVariantKind each : kTaggedKinds)
    if (IsSameName(name, VariantKindName(each))) kind = each;
  if (kind == vkUnassigned) cursor_.Fail(begin, name + " is no kind of variant that stands in a list");
  Variant value;
  const std::size_t number = cursor_.Offset();
  const auto ranged = [&](std::int64_t least, std::int64_t greatest) {
    const std::int64_t read = ReadInt64();
    if (read < least || read > greatest) cursor_.Fail(number, std::to_string(read) + " is no " + VariantKindName(kind));
    return read;
  };
  if (kind == vkByte) value = static_cast<std::uint8_t>(ranged(0, 255));
  if (kind == vkSmallint) value = static_cast<std::int16_t>(ranged(-32768, 32767));
  if (kind == vkWord) value = static_cast<std::uint16_t>(ranged(0, 65535));
  if (kind == vkInt64) value = ReadInt64();
  if (kind == vkDate) value = Variant::Date(ReadFloat());
  if (kind == vkArray) {
    std::vector<Variant> elements;
    while (!EndOfList()) elements.push_back(ReadVariant());
    value = Variant::Array(std::move(elements));
  }
  if (!EndOfList()) FailKind("the end of the variant's list");
  ReadListEnd();
  return value;
}

// -- TWriter ----------------------------------------------------------------------------------------------------------

void TWriter::Count() {
  if (depth_ == base_) ++values_;
}

void TWriter::WriteInteger(std::int64_t value) {
  Count();
  bytes_->Int(value);
}

void TWriter::WriteFloat(double value) {
  Count();
  bytes_->Double(value);
}

void TWriter::WriteString(std::string_view text) {
  if (text.size() > kMaxStreamText)
    throw EWriteError("A text of " + std::to_string(text.size()) + " bytes is longer than " +
                      std::to_string(kMaxStreamText));
  Count();
  bytes_->Text(text);
}

void TWriter::WriteIdent(std::string_view name) {
  if (!IsStreamPath(name) || name.size() > kMaxStreamName)
    throw EWriteError("'" + std::string(name) + "' is not a valid name");
  Count();
  bytes_->Ident(name);
}

void TWriter::WriteSet(const std::vector<std::string>& members) {
  for (const std::string& member : members)
    if (!IsStreamIdentifier(member) || member.size() > kMaxStreamName)
      throw EWriteError("'" + member + "' can't be the name of a set's member");
  Count();
  bytes_->Kind(skSet);
  for (const std::string& member : members) bytes_->Name(member);
  bytes_->Name({});
}

void TWriter::WriteBinary(std::string_view bytes) {
  Count();
  bytes_->Binary(bytes);
}

void TWriter::WriteListBegin() {
  if (depth_ >= kMaxStreamDepth)
    throw EWriteError("Lists are nested deeper than " + std::to_string(kMaxStreamDepth) + " levels");
  Count();
  bytes_->Kind(skList);
  ++depth_;
}

void TWriter::WriteListEnd() {
  if (depth_ == base_) throw EWriteError("A list is ended that wasn't begun");
  bytes_->Kind(skEnd);
  --depth_;
}

void TWriter::WriteVariant(const Variant& value) {
  const bool isTagged = [&] {
    for (const TVariantKind each : kTaggedKinds)
      if (each == value.Kind()) return true;
    return false;
  }();
  if (isTagged) {
    WriteListBegin();
    WriteIdent(VariantKindName(value.Kind()));
  }
  switch (value.Kind()) {
    case vkUnassigned:
      WriteIdent(kUnassigned);
      break;
    case vkNull:
      WriteIdent(kNull);
      break;
    case vkBoolean:
      WriteBoolean(value.AsBoolean());
      break;
    case vkByte:
    case vkSmallint:
    case vkWord:
    case vkInteger:
    case vkInt64:
      WriteInteger(value.AsInt64());
      break;
    case vkDouble:
    case vkDate:
      WriteFloat(value.AsDouble());
      break;
    case vkString:
      WriteString(value.Text());
      break;
    case vkArray:
      for (const Variant& element : value.Elements()) WriteVariant(element);
      break;
    case vkInterface:
      throw EWriteError("A variant that holds an interface can't be written");
  }
  if (isTagged) WriteListEnd();
}

void TWriter::Finish() const {
  if (depth_ != base_) throw EWriteError("A list wasn't ended");
  if (values_ != 1) throw EWriteError("One value should have been written, not " + std::to_string(values_));
}

// -- TFiler -----------------------------------------------------------------------------------------------------------

void TFiler::DefineBinaryProperty(std::string_view name, const TStreamProc& read, const TStreamProc& write,
                                  bool hasData) {
  DefineProperty(
      name,
      [&read](TReader& reader) {
        const TOwned<TMemoryStream> stream = Make<TMemoryStream>(reader.ReadBinary());
        read(*stream);
      },
      [&write](TWriter& writer) {
        const TOwned<TMemoryStream> stream = Make<TMemoryStream>();
        write(*stream);
        writer.WriteBinary(stream->Memory());
      },
      hasData);
}

namespace {

void ReadStrings(TStrings& strings, TReader& reader) {
  std::vector<std::string> texts;
  for (reader.ReadListBegin(); !reader.EndOfList();) texts.push_back(reader.ReadString());
  reader.ReadListEnd();
  const TStringsUpdate update(strings);
  strings.Clear();
  for (const std::string& text : texts) strings.Add(text);
}

void WriteStrings(const TStrings& strings, TWriter& writer) {
  writer.WriteListBegin();
  for (std::int32_t i = 0; i < strings.GetCount(); ++i) writer.WriteString(strings.Get(i));
  writer.WriteListEnd();
}

}  // namespace

void TFiler::Define(TPersistent& object, TFiler& filer) {
  const TMemoryKeeper<TComponent> keep(As<TComponent>(&object));  // one of its functions may free it
  if (auto* const strings = As<TStrings>(&object))
    filer.DefineProperty(
        "Strings", [strings](TReader& reader) { ReadStrings(*strings, reader); },
        [strings](TWriter& writer) { WriteStrings(*strings, writer); }, strings->GetCount() > 0);
  object.DefineProperties(filer);
}

}  // namespace vx
