#include "Window/Output/ExportDialog.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPointer>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QSettings>
#include <QSpinBox>
#include <QThreadPool>
#include <QTimer>
#include <QVBoxLayout>
#include <cmath>

#include "Picture/Composition.h"
#include "Picture/PaperSizes.h"
#include "Picture/QtPainting.h"
#include "Window/Commands/Language.h"
#include "Window/Files/Questions.h"
#include "Window/Frame/Theme.h"

namespace host::window {
namespace {

using picture::PictureFormat;

constexpr int kPreviewWidth = 400, kPreviewHeight = 400;
constexpr int kDelayMs = 80;

/// The dialog. The drawing stands still while it is open, so its preview is drawn on a worker.
class ExportDialog : public QDialog {
  Q_DECLARE_TR_FUNCTIONS(host::window::ExportDialog)

 public:
  ExportDialog(QWidget& window, Engine& engine, CanvasView& canvas, ExportKind kind)
      : QDialog(&window), engine_(engine), canvas_(canvas), kind_(kind) {
    setObjectName("exportDialog");
    setWindowTitle(kind == ExportKind::File ? tr("Export Picture") : tr("Print"));
    build();
    connectParts();
    draw();
  }
  ~ExportDialog() override { pool_.waitForDone(); }

  ExportChoice choice() const;
  PictureFormat format() const {
    constexpr PictureFormat kFormats[] = {PictureFormat::Pdf, PictureFormat::Png, PictureFormat::Svg};
    return kFormats[std::clamp(format_->currentIndex(), 0, 2)];
  }

 private:
  void build();
  void connectParts();
  void changed();
  void draw();
  void showPicture(const QImage& image, const QString& problem);
  void pickArea();
  geometry::Box area() const;

  Engine& engine_;
  CanvasView& canvas_;
  ExportKind kind_;
  QComboBox* format_ = new QComboBox;
  QComboBox* area_ = new QComboBox;
  QComboBox* paper_ = new QComboBox;
  QComboBox* scale_ = new QComboBox;
  QComboBox* background_ = new QComboBox;
  QComboBox* lines_ = new QComboBox;
  QComboBox* tone_ = new QComboBox;
  QLineEdit* layers_ = new QLineEdit("*");
  QSpinBox* dpi_ = new QSpinBox;
  QLabel* preview_ = new QLabel;
  QLabel* note_ = new QLabel;
  QPushButton* ok_ = nullptr;
  QTimer timer_;
  QThreadPool pool_;
  std::optional<geometry::Box> picked_;
  int drawn_ = 0;
};

void ExportDialog::build() {
  auto* const whole = new QHBoxLayout(this);
  whole->setContentsMargins(16, 16, 16, 16);
  whole->setSpacing(20);
  auto* const left = new QVBoxLayout;
  auto* const form = new QFormLayout;
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  form->setVerticalSpacing(7);
  format_->addItems({"PDF", "PNG", "SVG"});
  area_->addItem(tr("Whole drawing"), "all");
  area_->addItem(tr("What is in sight"), "view");
  area_->addItem(tr("Point on the drawing…"), "pick");
  const std::vector<picture::PaperSize>& sizes = picture::paperSizes();
  for (auto size = sizes.rbegin(); size != sizes.rend(); ++size) {
    if (size->name != "A5") paper_->addItem(toQt(size->name));
  }
  paper_->addItem(tr("No paper"));
  paper_->setEditable(true);
  paper_->setToolTip(tr("A size of your own in millimetres: 594x420"));
  paper_->setCurrentText("A3");
  scale_->addItems({"1:200", "1:250", "1:500", "1:1000", "1:2000", tr("Fitted")});
  scale_->setEditable(true);
  scale_->setCurrentText("1:500");
  background_->addItem(tr("White"), "white");
  background_->addItem(tr("Transparent"), "transparent");
  background_->addItem(tr("Black"), "black");
  lines_->addItem(tr("As drawn"), "on");
  lines_->addItem(tr("Thin"), "off");
  lines_->addItem(tr("Twice as wide"), "2");
  tone_->addItems({tr("Colours"), tr("Greys"), tr("Black and white")});
  layers_->setToolTip(tr("A pattern of layer names, for example tm?_*"));
  dpi_->setRange(50, 600);
  dpi_->setValue(150);
  dpi_->setSuffix(" dpi");
  if (kind_ == ExportKind::File) form->addRow(tr("&Format"), format_);
  form->addRow(tr("&Area"), area_);
  form->addRow(tr("&Paper"), paper_);
  form->addRow(tr("&Scale"), scale_);
  form->addRow(tr("&Background"), background_);
  form->addRow(tr("&Lines"), lines_);
  form->addRow(tr("&Tone"), tone_);
  form->addRow(tr("La&yers"), layers_);
  if (kind_ == ExportKind::File) form->addRow(tr("&Resolution"), dpi_);
  left->addLayout(form);
  note_->setWordWrap(true);
  note_->setTextFormat(Qt::RichText);
  note_->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
  note_->setObjectName("note");
  left->addSpacing(8);
  left->addWidget(note_);
  left->addStretch();
  auto* const buttons = new QDialogButtonBox;
  ok_ = buttons->addButton(kind_ == ExportKind::File ? tr("Save…") : tr("Print…"), QDialogButtonBox::AcceptRole);
  buttons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
  ok_->setDefault(true);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  left->addWidget(buttons);
  auto* const leftSide = new QWidget;
  left->setContentsMargins(0, 0, 0, 0);
  leftSide->setLayout(left);
  leftSide->setFixedWidth(280);
  whole->addWidget(leftSide);
  preview_->setFixedSize(kPreviewWidth, kPreviewHeight);
  preview_->setAlignment(Qt::AlignCenter);
  preview_->setAccessibleName(tr("Preview"));
  whole->addWidget(preview_);
}

void ExportDialog::connectParts() {
  for (QComboBox* const box : {format_, area_, paper_, scale_, background_, lines_, tone_})
    connect(box, &QComboBox::currentTextChanged, this, &ExportDialog::changed);
  connect(layers_, &QLineEdit::textChanged, this, &ExportDialog::changed);
  connect(area_, &QComboBox::activated, this, [this] {
    if (area_->currentData() == "pick") QTimer::singleShot(0, this, &ExportDialog::pickArea);
  });
  connect(note_, &QLabel::linkActivated, this,
          [this](const QString& link) { (link.startsWith("1:") ? scale_ : paper_)->setCurrentText(link); });
  timer_.setSingleShot(true);
  timer_.setInterval(kDelayMs);
  connect(&timer_, &QTimer::timeout, this, &ExportDialog::draw);
  pool_.setMaxThreadCount(1);
}

ExportChoice ExportDialog::choice() const {
  ExportChoice choice;
  const std::string paper = paper_->currentText().trimmed().toStdString();
  choice.paper.clear();
  choice.scale.clear();
  if (picture::setPaper(choice.picture, paper)) choice.paper = paper_->currentText().trimmed();
  if (picture::setScale(choice.picture, scale_->currentText().trimmed().toStdString()))
    choice.scale = scale_->currentText().trimmed();
  choice.background = background_->currentData().toString();
  (void)picture::setBackground(choice.picture, choice.background.toStdString());
  choice.lineweights = lines_->currentData().toString();
  (void)picture::setLineweights(choice.picture, choice.lineweights.toStdString());
  choice.picture.colors = static_cast<picture::ColorMode>(tone_->currentIndex());
  choice.layers = layers_->text().trimmed().isEmpty() ? "*" : layers_->text().trimmed();
  choice.picture.layers = choice.layers.toStdString();
  choice.picture.layout = fromQt(toQt(engine_.application().currentLayoutName())).empty()
                              ? "Model"
                              : toQt(engine_.application().currentLayoutName()).toStdString();
  choice.picture.metresPerUnit = picture::metresPerUnit(*engine_.drawing());
  picture::setDrawingFile(choice.picture, engine_.application().drawingFile());
  choice.picture.supportFolders = engine_.application().supportFolders();
  if (area_->currentData() == "view") choice.picture.window = canvas_.visibleBox();
  if (area_->currentData() == "pick" && picked_) choice.picture.window = *picked_;
  if (choice.picture.paper) choice.picture.dpi = dpi_->value();
  return choice;
}

geometry::Box ExportDialog::area() const {
  if (area_->currentData() == "view") return canvas_.visibleBox();
  if (area_->currentData() == "pick" && picked_) return *picked_;
  return geometry::blockExtents(*engine_.drawing(), *engine_.application().currentSpace());
}

void ExportDialog::changed() {
  dpi_->setEnabled(kind_ == ExportKind::File && format() == PictureFormat::Png);
  timer_.start();
}

/// The dialog steps aside; the frame that hangs on the cursor has the size of the page.
void ExportDialog::pickArea() {
  const ExportChoice chosen = choice();
  hide();
  const auto then = [self = QPointer(this)](std::optional<geometry::Box> box) {
    if (self == nullptr) return;
    if (box) self->picked_ = box;
    if (!self->picked_) self->area_->setCurrentIndex(0);
    self->QDialog::show();
    self->changed();
  };
  if (chosen.picture.paper && chosen.picture.scale) {
    const double unitsPerMm = 1 / (*chosen.picture.scale * chosen.picture.metresPerUnit * 1000);
    picture::PaperSize size = *chosen.picture.paper;
    if (size.mayTurn && size.widthMm < size.heightMm) std::swap(size.widthMm, size.heightMm);
    canvas_.askForPlace({size.widthMm * unitsPerMm, size.heightMm * unitsPerMm}, then);
  } else {
    canvas_.askForRectangle(then);
  }
  canvas_.setFocus();
}

void ExportDialog::draw() {
  const ExportChoice chosen = choice();
  QStringList better;
  const QString problem = misfit(chosen, area(), chosen.picture.metresPerUnit, &better);
  QString html = "<span style=\"color:" + Theme::current().warning.name() + "\">" + problem.toHtmlEscaped() + "</span>";
  for (const QString& link : better)
    html += " <a style=\"color:" + Theme::current().accent.name() + "\" href=\"" + link + "\">" + link + "</a>";
  const bool isPaperGood = !chosen.paper.isEmpty() || paper_->currentText() == tr("No paper");
  const bool isScaleGood = !chosen.scale.isEmpty() || scale_->currentText() == tr("Fitted");
  if (!isPaperGood) html = tr("Paper: A0 to A4, or 594x420 in millimetres.");
  if (!isScaleGood) html = tr("Scale: 1:500, or fitted.");
  note_->setText(problem.isEmpty() && isPaperGood && isScaleGood ? QString() : html);
  ok_->setEnabled(isPaperGood && isScaleGood);

  picture::PictureOptions options = chosen.picture;
  const qreal ratio = devicePixelRatioF();
  options.dpi.reset();
  options.widthPx = static_cast<int>((kPreviewWidth - 16) * ratio);
  const int number = ++drawn_;
  // Only the last wish counts; one is being drawn at most.
  pool_.clear();
  pool_.start([this, options, number, ratio] {
    QImage image;
    QString told;
    try {
      const auto made = picture::drawPicture(*engine_.drawing(), options, PictureFormat::Png);
      if (made) {
        image.loadFromData(reinterpret_cast<const uchar*>(made->bytes.data()), static_cast<int>(made->bytes.size()));
      } else {
        told = toQt(made.message());
      }
    } catch (const std::bad_alloc&) {
      told = {};
    }
    image.setDevicePixelRatio(ratio);
    QMetaObject::invokeMethod(
        this,
        [this, image, told, number] {
          if (number == drawn_) showPicture(image, told);
        },
        Qt::QueuedConnection);
  });
}

void ExportDialog::showPicture(const QImage& image, const QString& problem) {
  if (image.isNull()) {
    preview_->setText(problem);
    preview_->setWordWrap(true);
    return;
  }
  const qreal ratio = devicePixelRatioF();
  QPixmap page(static_cast<int>(kPreviewWidth * ratio), static_cast<int>(kPreviewHeight * ratio));
  page.setDevicePixelRatio(ratio);
  page.fill(Theme::current().window);
  QPainter painter(&page);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  const QSizeF size = QSizeF(image.size()).scaled(kPreviewWidth - 16, kPreviewHeight - 16, Qt::KeepAspectRatio);
  const QRectF place(QPointF((kPreviewWidth - size.width()) / 2, (kPreviewHeight - size.height()) / 2), size);
  painter.fillRect(place.translated(3, 3), QColor(0, 0, 0, 40));
  painter.drawImage(place, image);
  painter.setPen(Theme::current().muted);
  painter.drawRect(place);
  painter.end();
  preview_->setPixmap(page);
}

void print(QWidget& window, const Engine& engine, const ExportChoice& choice) {
  const auto made = picture::composePicture(*engine.drawing(), choice.picture, PictureFormat::Pdf);
  if (!made) {
    showSentence(&window, toQt(made.message()));
    return;
  }
  QPrinter printer(QPrinter::HighResolution);
  const picture::Page& page = made->page;
  const QSizeF size(page.widthMm, page.heightMm);
  const auto chooseOurPaper = [&printer, &size] {
    const bool isWide = size.width() > size.height();
    printer.setPageSize(QPageSize(isWide ? size.transposed() : size, QPageSize::Millimeter, {}, QPageSize::FuzzyMatch));
    printer.setPageOrientation(isWide ? QPageLayout::Landscape : QPageLayout::Portrait);
    printer.setFullPage(true);
    const QSizeF paper = printer.pageLayout().fullRect(QPageLayout::Millimeter).size();
    constexpr double kSame = 1;  // millimetre
    return std::abs(paper.width() - size.width()) < kSame && std::abs(paper.height() - size.height()) < kSame;
  };
  chooseOurPaper();
  QPrintDialog dialog(&printer, &window);
  if (dialog.exec() != QDialog::Accepted) return;
  // The dialog begins with the printer's own paper, which would cut the page off.
  if (!chooseOurPaper()) {
    showSentence(&window, ExportDialog::tr("The printer has no paper of %1 × %2 mm: nothing was printed.")
                              .arg(size.width(), 0, 'f', 0)
                              .arg(size.height(), 0, 'f', 0));
    return;
  }
  QPainter painter(&printer);
  const double scale = printer.resolution() / picture::kMmPerInch * page.widthMm / page.widthPx;
  painter.scale(scale, scale);
  if (choice.picture.background)
    painter.fillRect(QRectF(0, 0, page.widthPx, page.heightPx), QColor::fromRgb(*choice.picture.background));
  picture::paintList(painter, made->list, false);
}

}  // namespace

void exportPicture(QWidget& window, Engine& engine, Conversation& talk, CanvasView& canvas, ExportKind kind) {
  // It steps aside while a place is pointed at, which a modal dialog would not let happen: it is modal only in front.
  auto* const dialog = new ExportDialog(window, engine, canvas, kind);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setModal(true);
  QObject::connect(dialog, &QDialog::accepted, &window, [&window, &engine, &talk, dialog, kind] {
    const ExportChoice choice = dialog->choice();
    if (kind == ExportKind::Printer) {
      print(window, engine, choice);
      return;
    }
    const PictureFormat format = dialog->format();
    const QString ending = format == PictureFormat::Pdf ? ".pdf" : format == PictureFormat::Png ? ".png" : ".svg";
    const std::filesystem::path own = engine.application().drawingFile();
    const QFileInfo info(QString::fromStdString(own.string()));
    const QString folder =
        own.empty() ? QSettings().value("files/folder", QDir::homePath()).toString() : info.absolutePath();
    const QString name = own.empty() ? QStringLiteral("tolmex") : info.completeBaseName();
    QString file = QFileDialog::getSaveFileName(&window, ExportDialog::tr("Export Picture"),
                                                folder + "/" + name + ending, "*" + ending);
    if (file.isEmpty()) return;
    if (!file.endsWith(ending, Qt::CaseInsensitive)) file += ending;
    const QString options = pictureOptions(choice, format);
    talk.runLines({"PICTURE", options.isEmpty() ? file : file + ' ' + options});
  });
  dialog->show();
}

}  // namespace host::window
