#pragma once

namespace velk::cli {

/// What a command says at its end: how many requests were lost on the way and repeated, and that standard
/// output took not everything.
/// @param status the exit status that the command has come to
/// @return that, or `badFile` when there was no error but this one
int ended(int status);

}  // namespace velk::cli
