// The three standard streams of a program, made safe at its start and ended with an answer whether the text arrived.
#pragma once

namespace base {

// To be called first in main. A stream that the caller closed stays unusable, but its number is taken: otherwise the
// next file that is opened, a database for instance, would get the program's text. A reader that goes away and a file
// that reaches its limit become a failed write instead of the end of the process.
void PrepareStandardStreams();

// Writes out what standard output still holds. False if that, or anything before, could not be written.
bool StandardOutputWritten();

} // namespace base
