// The configuration frame: the tester's configuration bytes and registers as bits, and the store button.
#include "ConfigFrame.h"

#include "link/LanguageTable.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace kalvo::shell::ui {

ConfigFrame::ConfigFrame(QWidget *parent) : QGroupBox(parent)
{
    setObjectName(QStringLiteral("configFrame"));
    auto *layout = new QVBoxLayout(this);
    m_table = new QTableWidget(0, 10, this);
    m_table->setObjectName(QStringLiteral("registers"));
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_table->setMinimumHeight(220);
    layout->addWidget(m_table);
    auto *buttons = new QHBoxLayout;
    m_store = new QPushButton(this);
    m_store->setObjectName(QStringLiteral("configStore"));
    m_close = new QPushButton(this);
    m_close->setObjectName(QStringLiteral("configFrameClose"));
    buttons->addStretch();
    buttons->addWidget(m_store);
    buttons->addWidget(m_close);
    layout->addLayout(buttons);
    connect(m_store, &QPushButton::clicked, this, &ConfigFrame::storeRequested);
}

static void AddRow(QTableWidget *table, const QString &name, const QByteArray &hex, const link::Flags &flags)
{
    const int row = table->rowCount();
    table->insertRow(row);
    table->setItem(row, 0, new QTableWidgetItem(name));
    table->setItem(row, 1, new QTableWidgetItem(QString::fromLatin1(hex)));
    for (int bit = 7; bit >= 0; --bit) {
        // Shown, not changed here: a greyed box says so at a glance, as everywhere on the desktop.
        auto *item = new QTableWidgetItem;
        item->setFlags(Qt::NoItemFlags);
        item->setCheckState(flags[static_cast<size_t>(bit)] ? Qt::Checked : Qt::Unchecked);
        table->setItem(row, 2 + (7 - bit), item);
    }
}

void ConfigFrame::ShowRegisters(const link::RegisterTable &table)
{
    m_table->setRowCount(0);
    for (int bit = 0; bit < link::RegisterTable::kBits; ++bit)
        AddRow(m_table, QStringLiteral("bit %1").arg(bit), table.bitBytes[static_cast<size_t>(bit)],
               table.bitFlags[static_cast<size_t>(bit)]);
    for (int i = 0; i < link::RegisterTable::kRegisters; ++i)
        AddRow(m_table, QStringLiteral("var %1").arg(QString::fromLatin1(link::RegisterTable::Address(i))),
               table.registerBytes[static_cast<size_t>(i)], table.registerFlags[static_cast<size_t>(i)]);
}

void ConfigFrame::ApplyTexts(const link::LanguageTable &texts)
{
    setTitle(texts.text(link::TxtFrameConfig));
    QStringList headers{texts.text(link::TxtLabelRegister), QStringLiteral("Hex")};
    for (int bit = 7; bit >= 0; --bit)
        headers << QString::number(bit);
    m_table->setHorizontalHeaderLabels(headers);
    m_store->setText(texts.text(link::TxtButtonStore));
    m_close->setText(texts.text(link::TxtButtonClose));
}

} // namespace kalvo::shell::ui
