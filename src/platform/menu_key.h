// The keyboard's way to the menu of a list or grid: Shift+F10, beside the menu key that not every keyboard
// and platform knows.
#pragma once

#include <QAbstractItemView>

namespace hyetex {

/// Shift+F10 asks for the view's menu over what is current in it.
void AddMenuKey(QAbstractItemView* view);

}  // namespace hyetex
