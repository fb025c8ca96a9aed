// Script functions of the views.
#pragma once

namespace quelmark {

void ViewLibraryRegister();

}  // namespace quelmark
