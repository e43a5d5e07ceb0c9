#include "platform/system/Application.h"

#include "platform/system/MessageQueue.h"
#include "platform/system/ShowMessage.h"

namespace vx {

const TClass& TApplication::StaticClass() {
  static const TClass info("TApplication", &TObject::StaticClass());
  return info;
}

void TApplication::HandleException(const std::exception& error, TObject* sender) {
  if (dynamic_cast<const EAbort*>(&error) != nullptr) return;
  if (OnException)
    OnException(sender, error);
  else
    ShowMessage(error.what());
}

void TApplication::ProcessMessages() { MessageQueue().Run(); }

TApplication& Application() {
  static const TOwned<TApplication> application = Make<TApplication>();
  return *application;
}

}  // namespace vx
