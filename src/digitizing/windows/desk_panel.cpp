#include "digitizing/windows/desk_panel.h"

#include <QScrollBar>

namespace hyetex {
namespace {

constexpr int Margin = 6;

}  // namespace

DeskPanel::DeskPanel(QWidget* parent) : QScrollArea(parent), inner_(new QWidget), parts_(new QVBoxLayout) {
  setObjectName(QStringLiteral("deskPanel"));
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::NoFocus);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setWidgetResizable(true);
  auto* all = new QVBoxLayout(inner_);
  all->setContentsMargins(Margin, Margin, Margin, Margin);
  all->addLayout(parts_);
  all->addStretch();
  setWidget(inner_);
}

void DeskPanel::Add(QWidget* part) {
  if (parts_->isEmpty()) setFixedWidth(part->width() + 2 * Margin + verticalScrollBar()->sizeHint().width());
  parts_->addWidget(part);
}

}  // namespace hyetex
