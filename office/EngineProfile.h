#pragma once
// The settings the office helper gives the engine's profile (its registrymodifications.xcu) before the
// engine starts:
// - no question before pasting over cells (the engine runs without anyone to answer it);
// - the sidebar of sheets and texts hidden: the engine builds it with every document it loads, which
//   took as long as reading a small template.
// A profile the engine wrote before keeps all it holds; the settings missing are appended (the
// engine reads the file top down, a later item overriding an earlier one).

#include <QByteArray>

namespace EngineProfile {

// The file's text with the settings in place; `xcu` empty for a new profile. Equal to `xcu` when
// nothing is missing.
QByteArray settled(const QByteArray &xcu);

} // namespace EngineProfile
