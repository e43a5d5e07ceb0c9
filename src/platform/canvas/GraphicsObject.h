// GraphicsObject.h: what pens, brushes and fonts have in common where they are properties of components.
//
// The component owns the object, publishes it as a part, and listens to OnChange to draw itself again:
//
//   class TBoard : public TComponent {
//    public:
//     TPen* Pen() const { return pen_.get(); }
//     void SetPen(const TPen* value) { pen_->Assign(value); }    // the setter assigns: the object stays
//     …
//     TOwned<TPen> pen_ = Make<TPen>();                          // OnChange is set in AfterConstruction
//   };
//   .Property("Pen", &TBoard::Pen)                               // streams write "Pen.Color = clRed"
//
// Each setter acts on a change only, and every change tells OnChange once, after it; Assign and SetData change all at
// once. A component whose pens begin otherwise than a new TPen publishes a class of its own for them, which says so
// (`.Publish("Color").Default(clGray)`): a stream leaves out what equals the default of the class.
#pragma once

#include "platform/component/Event.h"
#include "platform/runtime/Object.h"

namespace vx {

class TGraphicsObject : public TPersistent {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  TNotifyEvent OnChange;

 protected:
  virtual void Changed() { OnChange(this); }
  template <class V>
  void Change(V& member, const V& value) {
    if (member == value) return;
    member = value;
    Changed();
  }
};

}  // namespace vx
