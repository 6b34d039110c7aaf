#include "database/windows/picture_box.h"

#include <QBuffer>
#include <QHBoxLayout>
#include <QImageReader>
#include <QLocale>
#include <QVBoxLayout>

#include "core/files.h"
#include "database/tables/field.h"
#include "platform/controls.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr const char* Title = "Picture";
constexpr int WidestPixels = 20'000;  // on one side; what claims more is not decoded

}  // namespace

PictureBox::PictureBox(Dialogs& dialogs, QWidget* parent)
    : QWidget(parent),
      dialogs_(dialogs),
      labPicture(Named(new QLabel, "labPicture")),
      labPictureKind(Named(new QLabel, "labPictureKind")),
      cmdLoadPicture(Named(new QPushButton(tr("&Load...")), "cmdLoadPicture")),
      cmdSavePicture(Named(new QPushButton(tr("&Save...")), "cmdSavePicture")),
      cmdClearPicture(Named(new QPushButton(tr("Clear &Picture")), "cmdClearPicture")) {
  setFocusProxy(cmdLoadPicture);
  labPicture->setFrameShape(QFrame::StyledPanel);
  labPicture->setAlignment(Qt::AlignCenter);
  labPicture->setFixedSize(40 * fontMetrics().averageCharWidth(), 10 * fontMetrics().lineSpacing());
  labPictureKind->setTextFormat(Qt::PlainText);
  labPictureKind->setWordWrap(true);
  auto* buttons = new QVBoxLayout;
  for (QPushButton* button : {cmdLoadPicture, cmdSavePicture, cmdClearPicture}) buttons->addWidget(button);
  buttons->addWidget(labPictureKind);
  buttons->addStretch();
  auto* all = new QHBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->addWidget(labPicture);
  all->addLayout(buttons, 1);
  connect(cmdLoadPicture, &QPushButton::clicked, this, &PictureBox::Load);
  connect(cmdSavePicture, &QPushButton::clicked, this, &PictureBox::Save);
  connect(cmdClearPicture, &QPushButton::clicked, this, [this] {
    value_ = DbValue();
    changed_ = true;
    Draw();
  });
  Draw();
}

void PictureBox::Show(const DbValue& value) {
  value_ = value;
  changed_ = false;
  Draw();
}

void PictureBox::ShowComing() {
  Show({});
  labPictureKind->setText(tr("..."));
}

void PictureBox::SetEditable(bool editable) {
  editable_ = editable;
  Draw();
}

void PictureBox::Draw() {
  const bool isThere = !IsNull(value_);
  cmdLoadPicture->setEnabled(editable_);
  cmdClearPicture->setEnabled(editable_ && isThere);
  cmdSavePicture->setEnabled(isThere);
  labPicture->setPixmap({});
  if (!isThere) return labPictureKind->setText(tr("No picture"));
  const std::string kept = Bytes();
  QByteArray bytes = QByteArray::fromRawData(kept.data(), static_cast<qsizetype>(kept.size()));
  QBuffer buffer(&bytes);
  QImageReader reader(&buffer);
  reader.setAutoTransform(true);
  const QString size = QLocale::c().formattedDataSize(bytes.size());
  const QSize pixels = reader.size();
  QImage image;
  if (pixels.isValid() && pixels.width() <= WidestPixels && pixels.height() <= WidestPixels) {
    const qreal ratio = devicePixelRatioF();
    const QSize room = labPicture->contentsRect().size() * ratio;
    reader.setScaledSize(pixels.scaled(pixels.boundedTo(room), Qt::KeepAspectRatio));
    image = reader.read();
    image.setDevicePixelRatio(ratio);
  }
  if (image.isNull()) return labPictureKind->setText(tr("%1, no picture that can be shown").arg(size));
  labPicture->setPixmap(QPixmap::fromImage(image));
  labPictureKind->setText(tr("%1 by %2 pixels, %3").arg(pixels.width()).arg(pixels.height()).arg(size));
}

void PictureBox::Load() {
  const auto path = dialogs_.ChooseFile(FromQt(tr("Load Picture")), "", "");
  if (!path) return;
  auto bytes = ReadWholeFile(*path, LargestPicture);
  if (bytes && bytes->empty()) bytes = Failure("The file " + *path + " is empty.");
  if (!bytes) {
    dialogs_.MessageBox(Title, bytes.error(), BoxButtons::Ok, BoxIcon::Warning);
    return;
  }
  value_ = DbBinary{*std::move(bytes)};
  changed_ = true;
  Draw();
}

void PictureBox::Save() {
  const std::string bytes = Bytes();
  const auto path =
      dialogs_.ChooseFileToSave(FromQt(tr("Save Picture")), "picture" + std::string(PictureEnding(bytes)));
  if (!path) return;
  if (const auto written = WriteWholeFile(*path, bytes); !written)
    dialogs_.MessageBox(Title, written.error(), BoxButtons::Ok, BoxIcon::Warning);
}

}  // namespace hyetex
