// Drawing of vertex sets and edge sets in the views.
#pragma once

namespace quelmark {

// Registers "DrawVertex" and "DrawEdge"; after the classes VertexSet and Edge.
void SetDrawRegister();

}  // namespace quelmark
