#include "digitizing/windows/desk_panel.h"

namespace hyetex {
namespace {

constexpr int Margin = 6;

}  // namespace

DeskPanel::DeskPanel(QWidget* parent) : QWidget(parent), parts_(new QVBoxLayout) {
  setObjectName(QStringLiteral("deskPanel"));
  setAutoFillBackground(true);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(Margin, Margin, Margin, Margin);
  all->addLayout(parts_);
  all->addStretch();
}

void DeskPanel::Add(QWidget* part) { parts_->addWidget(part, 0, Qt::AlignHCenter); }

}  // namespace hyetex
