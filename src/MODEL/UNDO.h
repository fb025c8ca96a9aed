// The steps that the model has gone: whole states of polygons, selection, attributes and objects, kept in
// pieces that neighbouring states share where they are equal. A mark is taken before a change; undoing puts
// the state of the newest mark back and keeps the present one for redoing. When the pieces need more memory
// than the limit the oldest steps go, but the newest mark always stays. Undoing and redoing forget nothing:
// the state that they leave, one at most, may stand above the limit.
#pragma once

#include <cstddef>
#include <string_view>

namespace quelmark {

inline constexpr std::size_t UNDO_MEMORY = std::size_t{512} << 20;  // bytes of kept states, at the start

// Forgets every step.
void UndoClear();
// The same when the model goes; the limit is the first one again.
void UndoExit();
// Keeps the present state under a name, and forgets what could be redone. A mark at the state of the mark
// before takes that one's place. False when there is no memory for it; older steps are then forgotten.
bool UndoMark(std::string_view name);
// Puts the newest marked state back and takes the mark away. False when there is none.
bool Undo();
// Takes back what Undo did last. False when nothing was undone since the last mark.
bool Redo();
// Puts the newest marked state back and leaves the mark: for showing one change after another.
bool UndoRestore();
// Puts the newest marked state back and takes the mark away, as if it had never been taken: what could be
// redone before it can be redone again, unless something was undone or redone since.
bool UndoCancel();
// The end of the command that the newest mark began. A mark since which nothing has changed but edit marks is
// cancelled; false then, and when there is none or something was undone or redone since.
bool UndoEnd();
// The name of the step that Undo, or Redo, would take; "" when there is none.
std::string_view UndoText();
std::string_view RedoText();
// The model has been written to its file: a state kept before now differs from the file, so it and its
// objects come back with the edit mark.
void UndoSaved();
// The limit in bytes.
void UndoLimit(std::size_t bytes);
std::size_t UndoLimit();
// Bytes of all kept states together.
std::size_t UndoHeld();

// Registers the script functions.
void UndoRegister();

}  // namespace quelmark
