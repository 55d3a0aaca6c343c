// The service form's entry that reads every record of the store into its terminal panel.
#include "RecordReadAction.h"

#include "gui/DeviceThread.h"
#include "link/Link.h"
#include "link/TextRules.h"
#include "records/RecordRetrieval.h"

#include <QWidget>

namespace kalvo::records::ui {

RecordReadAction::RecordReadAction(gui::DeviceThread &device, QWidget *owner,
                                   std::function<void(const QString &)> show)
    : QAction(owner), m_device(device), m_owner(owner), m_show(std::move(show))
{
    setObjectName(QStringLiteral("readprot"));
    connect(this, &QAction::triggered, this, &RecordReadAction::ReadAll);
}

void RecordReadAction::ReadAll()
{
    m_device.Post(m_owner, text().remove(QLatin1Char('&')),
                  [this](link::Link &link, link::Prompter &prompter) {
                      // Each record shows as it arrives; the file is written at the end.
                      const RetrievalResult result =
                          ReadProtocols(link, prompter, [this](int, const QByteArray &record) {
                              QMetaObject::invokeMethod(this, [this, text = link::DecodeTesterText(record)] {
                                  m_show(QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
                              });
                          });
                      if (result.status == RetrievalStatus::Done)
                          QMetaObject::invokeMethod(this, [this, records = result.records] {
                              emit recordsRead(records, QString(), false);
                          });
                  });
}

} // namespace kalvo::records::ui
