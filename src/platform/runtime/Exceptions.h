// Exceptions.h: the root of all errors, and the platform's own classes.
//
// Every error of the system is an Exception: a message for a person, and a help context. A unit that tells its failures
// apart derives its own class; a class needs no more than a name and the inherited constructor.
//
//   throw EListError("List index out of bounds (5)");
//
//   try { table->Free(); }
//   catch (const Exception& e) { Show(std::string(e.ClassName()) + ": " + e.Message()); }
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

#include "platform/runtime/ClassInfo.h"

namespace vx {

class Exception : public std::exception {
 public:
  explicit Exception(std::string message, std::int32_t helpContext = 0)
      : message_(std::move(message)), helpContext_(helpContext) {}

  const std::string& Message() const { return message_; }
  /// Number of the help page that belongs to the error; 0 for none.
  std::int32_t HelpContext() const { return helpContext_; }
  const char* what() const noexcept override { return message_.c_str(); }
  /// Name of the most derived class that gave itself a name.
  virtual const char* ClassName() const { return "Exception"; }
  /// Classes of errors tell of themselves as those of objects do; none has a factory.
  static const TClass& StaticClass() {
    static const TClass info("Exception", nullptr);
    return info;
  }
  virtual const TClass& ClassType() const { return StaticClass(); }

 private:
  std::string message_;
  std::int32_t helpContext_;
};

/// Gives an exception class its name and constructor, so that a family of errors is a table of one-line classes:
///   class EListError : public TNamedException<EListError> { using TNamedException::TNamedException; … };
/// `Self` must have `static constexpr const char* kName`.
template <class Self, class Base = Exception>
class TNamedException : public Base {
 public:
  using Base::Base;
  const char* ClassName() const override { return Self::kName; }
  static const TClass& StaticClass() {
    static const TClass info(Self::kName, &Base::StaticClass());
    return info;
  }
  const TClass& ClassType() const override { return StaticClass(); }
};

/// A position outside a list, or a capacity or count that no list can have.
class EListError : public TNamedException<EListError> {
 public:
  static constexpr const char* kName = "EListError";
  using TNamedException::TNamedException;
};

/// A text that a sorted or duplicate-free text list can't take.
class EStringListError : public TNamedException<EStringListError> {
 public:
  static constexpr const char* kName = "EStringListError";
  using TNamedException::TNamedException;
};

/// A text or value that can't be turned into the kind that was asked for.
class EConvertError : public TNamedException<EConvertError> {
 public:
  static constexpr const char* kName = "EConvertError";
  using TNamedException::TNamedException;
};

/// An operation that a Variant of this kind doesn't know.
class EVariantError : public TNamedException<EVariantError> {
 public:
  static constexpr const char* kName = "EVariantError";
  using TNamedException::TNamedException;
};

/// An object that isn't of the class that was demanded.
class EInvalidCast : public TNamedException<EInvalidCast> {
 public:
  static constexpr const char* kName = "EInvalidCast";
  using TNamedException::TNamedException;
};

/// A call that the state of its object doesn't allow.
class EInvalidOperation : public TNamedException<EInvalidOperation> {
 public:
  static constexpr const char* kName = "EInvalidOperation";
  using TNamedException::TNamedException;
};

/// A component that can't have this name, owner or place.
class EComponentError : public TNamedException<EComponentError> {
 public:
  static constexpr const char* kName = "EComponentError";
  using TNamedException::TNamedException;
};

/// Ends an operation without a word to the user.
class EAbort : public TNamedException<EAbort> {
 public:
  static constexpr const char* kName = "EAbort";
  using TNamedException::TNamedException;
};

/// What the operating system refused.
class EOSError : public TNamedException<EOSError> {
 public:
  static constexpr const char* kName = "EOSError";
  /// `errorCode` is the system's own number.
  EOSError(std::string message, std::int32_t errorCode) : TNamedException(std::move(message)), errorCode_(errorCode) {}
  std::int32_t ErrorCode() const { return errorCode_; }

 private:
  std::int32_t errorCode_;
};

/// A failed result code of a counted interface, as an error.
class EOleSysError : public TNamedException<EOleSysError> {
 public:
  static constexpr const char* kName = "EOleSysError";
  /// `errorCode` is the result code.
  EOleSysError(std::string message, std::int32_t errorCode, std::int32_t helpContext = 0)
      : TNamedException(std::move(message), helpContext), errorCode_(errorCode) {}
  std::int32_t ErrorCode() const { return errorCode_; }

 private:
  std::int32_t errorCode_;
};

/// An access to an object that isn't there: what other systems leave to the memory fault.
class ENilAccess : public TNamedException<ENilAccess> {
 public:
  static constexpr const char* kName = "ENilAccess";
  /// `missing` names the object in the words of the caller: "index field", "cursor owner".
  explicit ENilAccess(const std::string& missing) : TNamedException("Access to a missing object: " + missing) {}
};

/// Answers `*object`, or raises ENilAccess with `missing` for a null pointer.
template <class T>
T& Need(T* object, const char* missing) {
  if (object == nullptr) throw ENilAccess(missing);
  return *object;
}

}  // namespace vx
