// Script functions of keys, mouse and input handlers.
#pragma once

namespace quelmark {

void EventRegister();

}  // namespace quelmark
