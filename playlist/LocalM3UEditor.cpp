#include "playlist/LocalM3UEditor.h"

namespace lumaro {

LocalM3UEditor::LocalM3UEditor(FilePanels &panels, QObject *parent)
    : QObject(parent)
    , m_panels(panels)
{
}

LocalM3UEditor::~LocalM3UEditor()
{
    m_session.request_stop();
}

QString LocalM3UEditor::errorMessage() const
{
    return m_error ? description(*m_error) : QString();
}

LocalM3UEditor::Field LocalM3UEditor::errorField() const
{
    if (!m_error)
        return Field::None;
    switch (*m_error) {
    case LocalM3UFormError::emptyName:
        return Field::Name;
    case LocalM3UFormError::invalidAddress:
        return Field::Address;
    case LocalM3UFormError::invalidLogoAddress:
        return Field::LogoAddress;
    case LocalM3UFormError::invalidCountryCode:
        return Field::CountryCode;
    }
    Q_UNREACHABLE();
}

void LocalM3UEditor::beginAdding(const QString &address)
{
    if (m_isOpen) {
        // What is being typed matters more.
        if (m_form.address.isEmpty())
            setAddress(address);
        return;
    }
    LocalM3UForm form;
    form.address = address;
    m_isNew = true;
    begin(QUuid::createUuid(), form);
}

void LocalM3UEditor::beginEditing(const PlaylistEntry &entry)
{
    if (m_isOpen)
        return;
    m_isNew = false;
    begin(entry.id, LocalM3UForm::of(entry));
}

void LocalM3UEditor::begin(const QUuid &id, const LocalM3UForm &form)
{
    std::exchange(m_session, std::stop_source()).request_stop();
    m_id = id;
    setName(form.name);
    setAddress(form.address);
    setLogoAddress(form.logoAddress);
    setCountryCode(form.countryCode);
    setCategory(form.category);
    setError({});
    m_isOpen = true;
    Q_EMIT isOpenChanged();
}

void LocalM3UEditor::chooseLogoFile()
{
    askForLogoFile(m_session.get_token());
}

Task<> LocalM3UEditor::askForLogoFile(std::stop_token stop)
{
    const OpenPanelRequest request{
        .title = tr("Choose Logo File"),
        .prompt = tr("Choose"),
        .typeDescription = tr("Images"),
        .extensions = {QStringLiteral("png"), QStringLiteral("jpg"), QStringLiteral("jpeg"),
                       QStringLiteral("gif"), QStringLiteral("bmp"), QStringLiteral("svg"),
                       QStringLiteral("ico")},
    };
    const std::optional<QUrl> file = co_await m_panels.chooseFile(request, stop);
    if (file && !stop.stop_requested())
        setLogoAddress(file->toString(QUrl::FullyEncoded));
}

void LocalM3UEditor::save()
{
    if (!m_isOpen)
        return;
    const auto entry = m_form.entry(m_id);
    if (!entry) {
        setError(entry.error());
        return;
    }
    Q_EMIT saved(*entry);
    close();
}

void LocalM3UEditor::cancel()
{
    if (m_isOpen)
        close();
}

void LocalM3UEditor::close()
{
    m_session.request_stop();
    setError({});
    m_isOpen = false;
    Q_EMIT isOpenChanged();
}

void LocalM3UEditor::setField(QString LocalM3UForm::*field, const QString &text)
{
    if (m_form.*field == text)
        return;
    m_form.*field = text;
    if (field == &LocalM3UForm::name)
        Q_EMIT nameChanged();
    else if (field == &LocalM3UForm::address)
        Q_EMIT addressChanged();
    else if (field == &LocalM3UForm::logoAddress)
        Q_EMIT logoAddressChanged();
    else if (field == &LocalM3UForm::countryCode)
        Q_EMIT countryCodeChanged();
    else
        Q_EMIT categoryChanged();
    setError({});
}

void LocalM3UEditor::setError(std::optional<LocalM3UFormError> error)
{
    if (m_error == error)
        return;
    m_error = error;
    Q_EMIT errorChanged();
}

} // namespace lumaro
