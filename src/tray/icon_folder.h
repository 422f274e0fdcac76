#pragma once

#include <QIcon>
#include <QString>

namespace corvane::tray {

// `name` when an icon of that name is installed where desktops look for application icons;
// empty otherwise, as when the application runs from its build folder.
QString installedIconName(const QString& name);

// Puts `icon`, at each of its sizes, into `folder` as an icon theme lays it out
// (hicolor/<w>x<h>/apps/<name>.png), and its largest image beside, where panels that take the
// folder as a plain search path look. False if any image could not be written.
bool writeIconFolder(const QString& folder, const QString& name, const QIcon& icon);

}  // namespace corvane::tray
