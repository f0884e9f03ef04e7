#pragma once

#include <QString>

// A file name built from what phones and users call themselves (serials such as
// "192.168.1.5:5555", nicknames such as "Rack A/12") that every common file system accepts.
namespace SafeFileName {

// Names stay shorter than this, in characters, and within MaxBytes in UTF-8 (the limit of
// Linux file systems, which a name in Chinese would reach well before Limit characters).
constexpr int Limit = 120;
constexpr int MaxBytes = 255;

// label + tail, with '\\', '/', ':', '*', '?', '"', '<', '>', '|' and control characters turned
// into '_'. The label (the phone's data) is shortened, never within a character, so that the
// whole stays within the limits; the tail (what makes the name unique, and the suffix) is kept.
QString make(const QString &label, const QString &tail = {});

} // namespace SafeFileName
