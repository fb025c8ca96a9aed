// What scripts ask of the perspective view: the stored vertex nearest to a point, a point moved onto a plane
// along the line of sight, and selection by a rectangle of that view.
#pragma once

namespace quelmark {

void PickLibraryRegister();

}  // namespace quelmark
