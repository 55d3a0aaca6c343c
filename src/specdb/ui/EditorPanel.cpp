// The editor of the database window: regulation, protection class, applied parts, single faults,
// switch position and the 22 limit boxes, all kept in a SpecEditor.
#include "EditorPanel.h"

#include "DatabaseCaptions.h"

#include "gui/GuiPrompter.h"
#include "link/Errors.h"
#include "link/TextRules.h"
#include "specdb/DefaultLimits.h"
#include "specdb/SpecChunks.h"
#include "specdb/SpecDecoding.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace kalvo::specdb::ui {

namespace {

QComboBox *List(QWidget *parent, const char *name, const QStringList &entries)
{
    auto *box = new QComboBox(parent);
    box->setObjectName(QString::fromLatin1(name));
    box->addItems(entries);
    box->setCurrentIndex(-1);
    return box;
}

void Show(QComboBox *box, int entry)
{
    const QSignalBlocker blocker(box);
    box->setCurrentIndex(entry);
}

} // namespace

EditorPanel::EditorPanel(RegulationRules rules, QWidget *parent)
    : QWidget(parent), m_editor(rules.defaults), m_rules(std::move(rules))
{
    // The single faults open beside the lists, not below them: the window keeps its height, and
    // the limit boxes stay on a 768-pixel screen.
    auto *layout = new QVBoxLayout(this);
    auto *top = new QHBoxLayout;
    layout->addLayout(top);
    m_form = new QFormLayout;
    top->addLayout(m_form, 1);
    auto *side = new QVBoxLayout;
    top->addLayout(side);
    BuildLists();
    BuildSingleFaults();
    side->addWidget(m_openSingleFaults);
    side->addWidget(m_singleFaults);
    side->addStretch(1);
    BuildLimits();
    layout->addStretch(1);
    ApplyTexts(m_language);
}

void EditorPanel::BuildLists()
{
    m_regulation = List(this, "Vorschrift", RegulationList());
    m_regulationName = new QLabel(this);
    m_regulationName->setObjectName(QStringLiteral("VorschriftName"));
    m_class = List(this, "Schutzklasse", {QString(), QString(), QString(), QString()});
    m_type = List(this, "Typ", {QString(), QStringLiteral("B"), QStringLiteral("BF"), QStringLiteral("CF")});
    QStringList parts;
    for (int n = 0; n <= kMaxAppliedParts; ++n)
        parts << QStringLiteral("%1 Applied part's").arg(n);
    m_parts = List(this, "AnzahlAWT", parts);
    m_switch = List(this, "Schalterstellung", QStringList(SwitchCodes().size()));
    // The meanings are long: the box keeps the form narrow, its list shows them whole.
    m_switch->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_switch->setMinimumContentsLength(16);
    m_insulated = new QCheckBox(this);
    m_insulated->setObjectName(QStringLiteral("ISOAWT"));
    m_builtBefore1982 = new QCheckBox(QStringLiteral("Baujahr vor 1982"), this);
    m_builtBefore1982->setObjectName(QStringLiteral("Baujahr"));
    for (QWidget *field :
         std::initializer_list<QWidget *>{m_regulation, m_class, m_type, m_parts, m_switch}) {
        auto *label = new QLabel(this);
        label->setBuddy(field);
        m_form->addRow(label, field);
    }
    m_form->insertRow(1, QString(), m_regulationName);
    m_form->addRow(QString(), m_insulated);
    m_form->addRow(QString(), m_builtBefore1982);

    const auto chosen = [this](QComboBox *box, auto choose) {
        connect(box, &QComboBox::activated, this, [this, choose](int entry) {
            (m_editor.*choose)(entry);
            Refresh();
        });
    };
    chosen(m_regulation, &SpecEditor::ChooseRegulation);
    chosen(m_class, &SpecEditor::ChooseClass);
    chosen(m_type, &SpecEditor::ChooseType);
    chosen(m_parts, &SpecEditor::ChooseAppliedParts);
    connect(m_switch, &QComboBox::activated, this, [this](int entry) {
        m_editor.ChooseSwitch(SwitchCodes().value(entry));
        Refresh();
    });
    connect(m_insulated, &QCheckBox::toggled, this, [this](bool on) { m_editor.SetInsulatedParts(on); });
}

void EditorPanel::BuildSingleFaults()
{
    m_openSingleFaults = new QPushButton(this);
    m_openSingleFaults->setObjectName(QStringLiteral("SFCOpen"));
    m_singleFaults = new QGroupBox(this);
    m_singleFaults->setObjectName(QStringLiteral("SFC"));
    auto *frame = new QVBoxLayout(m_singleFaults);
    const QString captions[] = {QString(), QStringLiteral("N unterbrochen"),
                                QStringLiteral("PE unterbrochen"), QStringLiteral("Netz am AWT")};
    for (int i = 0; i < 4; ++i) {
        m_faultBoxes[static_cast<size_t>(i)] = new QCheckBox(captions[i], m_singleFaults);
        m_faultBoxes[static_cast<size_t>(i)]->setObjectName(QStringLiteral("Check1_%1").arg(i));
        frame->addWidget(m_faultBoxes[static_cast<size_t>(i)]);
    }
    auto *ok = new QPushButton(QStringLiteral("OK"), m_singleFaults);
    ok->setObjectName(QStringLiteral("SFCOK"));
    frame->addWidget(ok);
    m_singleFaults->hide();
    connect(m_openSingleFaults, &QPushButton::clicked, this, [this] {
        Refresh();
        m_singleFaults->show();
        m_faultBoxes[0]->setFocus();
    });
    connect(ok, &QPushButton::clicked, this, &EditorPanel::TakeSingleFaults);
}

void EditorPanel::TakeSingleFaults()
{
    std::array<bool, 4> ticked{};
    for (size_t i = 0; i < ticked.size(); ++i)
        ticked[i] = m_faultBoxes[i]->isChecked();
    m_editor.SetSingleFaults(ticked);
    m_singleFaults->hide();
}

void EditorPanel::BuildLimits()
{
    m_limitFrame = new QGroupBox(this);
    m_limitFrame->setObjectName(QStringLiteral("GWerte"));
    layout()->addWidget(m_limitFrame);
    auto *grid = new QGridLayout(m_limitFrame);
    for (int box = 1; box <= kLimitBoxes; ++box) {
        auto *edit = new QLineEdit(m_limitFrame);
        edit->setObjectName(QStringLiteral("GWert%1").arg(box));
        // Wide enough for the widest limit ("<0.500MOhm"), no wider: the store list needs room.
        edit->setMaximumWidth(edit->fontMetrics().horizontalAdvance(QStringLiteral("<00.000MOhm")) + 16);
        m_limits[static_cast<size_t>(box)] = edit;
        auto *label = new QLabel(QString::number(box), m_limitFrame);
        label->setBuddy(edit);
        m_limitLabels[static_cast<size_t>(box)] = label;
        const int row = (box - 1) % 11;
        const int column = (box - 1) / 11 * 2;
        grid->addWidget(label, row, column);
        grid->addWidget(edit, row, column + 1);
        connect(edit, &QLineEdit::editingFinished, this, [this, box] { LimitEdited(box); });
    }
    grid->setColumnStretch(4, 1); // numbers stay beside their boxes; the room goes to the right
}

void EditorPanel::ApplyTexts(const QString &language)
{
    m_language = language;
    const auto text = [&language](DbCaption caption) { return DbText(caption, language); };
    const std::pair<QWidget *, DbCaption> rows[] = {{m_regulation, DbCaption::Regulation},
                                                    {m_class, DbCaption::ProtectionClass},
                                                    {m_type, DbCaption::Type},
                                                    {m_parts, DbCaption::AppliedParts},
                                                    {m_switch, DbCaption::SwitchPosition}};
    for (const auto &[field, caption] : rows)
        static_cast<QLabel *>(m_form->labelForField(field))->setText(text(caption));
    const QString classes[] = {QStringLiteral("I"), QStringLiteral("I"), QStringLiteral("II"),
                               QStringLiteral("III")};
    for (int entry = 0; entry < 4; ++entry)
        m_class->setItemText(entry, text(DbCaption::ClassEntry).arg(classes[entry]));
    m_type->setItemText(0, text(DbCaption::TypeNone));
    const QList<QByteArray> codes = SwitchCodes();
    for (int entry = 0; entry < codes.size(); ++entry) {
        const QString shown = QStringLiteral("%1  %2").arg(QString::fromLatin1(codes[entry]),
                                                           SwitchMeaningIn(codes[entry], language));
        m_switch->setItemText(entry, shown);
        m_switch->setItemData(entry, shown, Qt::ToolTipRole);
    }
    m_switch->view()->setMinimumWidth(m_switch->view()->sizeHintForColumn(0) + 24);
    m_insulated->setText(text(DbCaption::InsulatedParts));
    m_openSingleFaults->setText(text(DbCaption::SingleFaultsOpen));
    m_singleFaults->setTitle(text(DbCaption::SingleFaults));
    m_faultBoxes[0]->setText(text(DbCaption::SingleFault0));
    m_limitFrame->setTitle(text(DbCaption::Limits));
    for (int box = 1; box <= kLimitBoxes; ++box)
        ShowLimitTip(box);
}

bool EditorPanel::singleFaultsOpen() const
{
    return !m_singleFaults->isHidden();
}

void EditorPanel::LimitEdited(int box)
{
    QLineEdit *edit = m_limits[static_cast<size_t>(box)];
    if (m_checking || !edit->isModified())
        return;
    // The record holds what the box shows, fitting or not: storing it says so again.
    const QByteArray text = LimitFromText(edit->text());
    m_editor.SetLimit(box, text);
    MarkLooser();
    if (LimitFits(box, text)) {
        edit->setModified(false);
        return;
    }
    // The message takes the focus; the box must not complain a second time when it loses it.
    m_checking = true;
    gui::GuiPrompter(this, window()->windowTitle())
        .message(kWrongNumberFormatText, link::Prompter::Icon::Warning);
    m_checking = false;
    edit->setFocus();
}

bool EditorPanel::Decode(const QList<QByteArray> &fields, const std::optional<BoxTexts> &limits, int number)
{
    bool limitsRead = false;
    try {
        limitsRead = m_editor.Decode(fields, limits, number);
    } catch (const link::FormatError &error) {
        gui::GuiPrompter(this, window()->windowTitle())
            .message(error.message(), link::Prompter::Icon::Warning);
        return false;
    }
    Refresh();
    if (!limitsRead)
        gui::GuiPrompter(this, window()->windowTitle())
            .message(LimitsNotReadText(number), link::Prompter::Icon::Warning);
    return true;
}

void EditorPanel::Refresh()
{
    Show(m_regulation, m_editor.regulationEntry());
    m_regulationName->setText(m_editor.regulationName());
    Show(m_class, m_editor.classEntry());
    Show(m_type, m_editor.typeEntry());
    Show(m_parts, m_editor.appliedParts());
    Show(m_switch, static_cast<int>(SwitchCodes().indexOf(m_editor.switchCode())));
    {
        const QSignalBlocker blocker(m_insulated);
        m_insulated->setChecked(m_editor.insulatedParts());
        m_insulated->setEnabled(m_editor.insulatedPartsEnabled());
    }
    const std::array<bool, 4> faults = m_editor.singleFaults();
    for (size_t i = 0; i < faults.size(); ++i)
        m_faultBoxes[i]->setChecked(faults[i]);
    for (int box = 1; box <= kLimitBoxes; ++box) {
        QLineEdit *edit = m_limits[static_cast<size_t>(box)];
        edit->setText(link::ConvertDisplayText(m_editor.record().limits[static_cast<size_t>(box)]));
        edit->setModified(false);
    }
    MarkLooser();
}

void EditorPanel::MarkLooser()
{
    // A limit that lets through what the regulation stops stands out before anyone stores it.
    const QList<int> looser = m_editor.LooserBoxes(m_rules);
    for (int box = 1; box <= kLimitBoxes; ++box) {
        QLineEdit *edit = m_limits[static_cast<size_t>(box)];
        const bool marked = looser.contains(box);
        if (edit->property("looser").toBool() == marked)
            continue;
        edit->setProperty("looser", marked);
        edit->setStyleSheet(marked ? QStringLiteral("QLineEdit { background-color: #ffd9a0; }") : QString());
        ShowLimitTip(box);
    }
}

void EditorPanel::ShowLimitTip(int box)
{
    const QString meaning = BoxMeaning(box, m_language);
    QLineEdit *edit = m_limits[static_cast<size_t>(box)];
    m_limitLabels[static_cast<size_t>(box)]->setToolTip(meaning);
#if QT_CONFIG(accessibility) // a Qt may be built without it
    edit->setAccessibleName(meaning);
#endif
    edit->setToolTip(edit->property("looser").toBool()
                         ? meaning + QLatin1Char('\n') + DbText(DbCaption::LooserThanRegulation, m_language)
                         : meaning);
}

} // namespace kalvo::specdb::ui
