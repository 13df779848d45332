#pragma once

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace zarnet {

/// A row on `panel`, without margins of its own.
inline QHBoxLayout* bareRow(QWidget* panel, int spacing) {
  auto* row = new QHBoxLayout(panel);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(spacing);
  return row;
}

/// A column on `panel`, without margins of its own.
inline QVBoxLayout* bareColumn(QWidget* panel, int spacing) {
  auto* column = new QVBoxLayout(panel);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(spacing);
  return column;
}

}  // namespace zarnet
