#pragma once

#include <QByteArray>
#include <QString>

// Replaces the file at `path` with `bytes` in one step, or leaves it as it was: a reader or a crash sees the old
// content or the new, never a mix. False when anything failed.
//
// QSaveFile alone is not enough: when the disk fills in the middle of its buffered writes, it commits what it
// could write, a truncated file. Writing unbuffered and checking the count is what catches that.
bool writeAtomically(const QString &path, const QByteArray &bytes);
