#pragma once

#include "platform/FilePanels.h"
#include "playlist/LocalM3UForm.h"

#include <QObject>

#include <stop_token>

namespace lumaro {

/// The form for adding a link to the library or editing one. Main thread.
class LocalM3UEditor : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY isOpenChanged)
    /// The link is not in the library yet.
    Q_PROPERTY(bool isNew READ isNew NOTIFY isOpenChanged)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QString address READ address WRITE setAddress NOTIFY addressChanged)
    Q_PROPERTY(QString logoAddress READ logoAddress WRITE setLogoAddress NOTIFY logoAddressChanged)
    Q_PROPERTY(QString countryCode READ countryCode WRITE setCountryCode NOTIFY countryCodeChanged)
    Q_PROPERTY(QString category READ category WRITE setCategory NOTIFY categoryChanged)
    /// What the last attempt to save found wrong; empty once a field is changed.
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorChanged)
    Q_PROPERTY(Field errorField READ errorField NOTIFY errorChanged)

public:
    enum class Field { None, Name, Address, LogoAddress, CountryCode };
    Q_ENUM(Field)

    /// `panels` outlives the editor.
    explicit LocalM3UEditor(FilePanels &panels, QObject *parent = nullptr);
    ~LocalM3UEditor() override;

    bool isOpen() const { return m_isOpen; }
    bool isNew() const { return m_isNew; }
    const QString &name() const { return m_form.name; }
    void setName(const QString &text) { setField(&LocalM3UForm::name, text); }
    const QString &address() const { return m_form.address; }
    void setAddress(const QString &text) { setField(&LocalM3UForm::address, text); }
    const QString &logoAddress() const { return m_form.logoAddress; }
    void setLogoAddress(const QString &text) { setField(&LocalM3UForm::logoAddress, text); }
    const QString &countryCode() const { return m_form.countryCode; }
    void setCountryCode(const QString &text) { setField(&LocalM3UForm::countryCode, text); }
    const QString &category() const { return m_form.category; }
    void setCategory(const QString &text) { setField(&LocalM3UForm::category, text); }
    QString errorMessage() const;
    Field errorField() const;

    // What an open form holds is not thrown away by opening it again.

    /// Opens the form for a new link, its address filled in as far as it is known. An open form
    /// takes the address if it has none.
    void beginAdding(const QString &address);
    /// Opens the form for a link of the library, unless it is open.
    void beginEditing(const PlaylistEntry &entry);
    /// Asks for an image file to be the logo.
    Q_INVOKABLE void chooseLogoFile();
    /// Hands the entry over and closes the form, or says what is wrong.
    Q_INVOKABLE void save();
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void isOpenChanged();
    void nameChanged();
    void addressChanged();
    void logoAddressChanged();
    void countryCodeChanged();
    void categoryChanged();
    void errorChanged();
    void saved(const lumaro::PlaylistEntry &entry);

private:
    void begin(const QUuid &id, const LocalM3UForm &form);
    void close();
    void setField(QString LocalM3UForm::*field, const QString &text);
    void setError(std::optional<LocalM3UFormError> error);
    Task<> askForLogoFile(std::stop_token stop);

    FilePanels &m_panels;
    bool m_isOpen = false;
    bool m_isNew = true;
    QUuid m_id;
    LocalM3UForm m_form;
    std::optional<LocalM3UFormError> m_error;
    /// Of the open form.
    std::stop_source m_session;
};

} // namespace lumaro
