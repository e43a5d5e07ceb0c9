// Application.h: the one object that stands for the running program.
//
//   try { table->LoadFromFile(name); }
//   catch (const std::exception& error) { Application().HandleException(error); }
//
//   while (!done) Application().ProcessMessages();    // in a long work: the window stays alive
//
// Main thread only.
#pragma once

#include <exception>

#include "platform/component/Event.h"
#include "platform/runtime/Object.h"

namespace vx {

/// An error, and the object that it happened in, or null.
using TExceptionEvent = TEvent<void(TObject* sender, const std::exception& error)>;

class TApplication : public TObject {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  /// What becomes of an error that no caller hears of: nothing for EAbort; OnException if that is assigned; else a
  /// person is told by ShowMessage. Raises only what the handler raises.
  void HandleException(const std::exception& error, TObject* sender = nullptr);

  /// Delivers what is due in the queue in force: posted messages, timers. MessageQueue.h tells the order, and what
  /// happens to errors of handlers.
  void ProcessMessages();

  TExceptionEvent OnException;
};

TApplication& Application();

}  // namespace vx
