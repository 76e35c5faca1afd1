// form_listener.h: a window hears that its record has changed, for as long as it lives.
//
// A window that is opened anew may be there before the one it replaces is gone; so a window that
// goes only falls silent, and takes nothing away from the one that hears now.
#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace norvik {

class Form_Listener {
 public:
  Form_Listener(std::function<void()>& host, std::function<void()> changed) {
    host = [alive = Alive, changed = std::move(changed)] {
      if (*alive) changed();
    };
  }
  ~Form_Listener() { *Alive = false; }
  Form_Listener(const Form_Listener&) = delete;
  Form_Listener& operator=(const Form_Listener&) = delete;

 private:
  std::shared_ptr<bool> Alive = std::make_shared<bool>(true);
};

}  // namespace norvik
