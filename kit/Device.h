#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kit {

class PortKey;

enum class UserInterfaceIdiom { Phone = 0, Pad = 1 };

// What the device says about itself. The port fills it in at start-up (the Qt port from the real
// system and the command line); tests script every value.
class Device {
public:
    static Device& current();

    // None when the device has no notion of an interface idiom.
    std::optional<UserInterfaceIdiom> userInterfaceIdiom() const { return idiom_; }
    const std::string& model() const { return model_; }
    const std::string& systemName() const { return systemName_; }
    const std::string& systemVersion() const { return systemVersion_; }
    // A stable per-device identifier, raw (not hashed).
    const std::string& uniqueIdentifier() const { return uniqueIdentifier_; }
    // The hardware machine name (what uname calls the machine).
    const std::string& machine() const { return machine_; }
    const std::string& name() const { return name_; }
    // The user's languages, most preferred first, as language tags ("en-US", "de").
    const std::vector<std::string>& preferredLanguages() const { return preferredLanguages_; }
    // Whether the application runs with the machine's full privileges (on Linux: as root).
    bool isSuperuser() const { return superuser_; }

    void setUserInterfaceIdiom(const PortKey&, std::optional<UserInterfaceIdiom> idiom) { idiom_ = idiom; }
    void setModel(const PortKey&, std::string v) { model_ = std::move(v); }
    void setSystemName(const PortKey&, std::string v) { systemName_ = std::move(v); }
    void setSystemVersion(const PortKey&, std::string v) { systemVersion_ = std::move(v); }
    void setUniqueIdentifier(const PortKey&, std::string v) { uniqueIdentifier_ = std::move(v); }
    void setMachine(const PortKey&, std::string v) { machine_ = std::move(v); }
    void setName(const PortKey&, std::string v) { name_ = std::move(v); }
    // The languages that the locale variables name, as language tags: LANGUAGE's list ("de_DE:en")
    // first, else the first set of LC_ALL, LC_MESSAGES and LANG ("pt_BR.UTF-8" gives "pt-BR").
    // The untranslated "C" and "POSIX" locales count as English.
    static std::vector<std::string> languagesFromLocaleVariables(const char* language, const char* lcAll,
                                                                 const char* lcMessages, const char* lang);
    void setPreferredLanguages(const PortKey&, std::vector<std::string> v) {
        preferredLanguages_ = std::move(v);
    }
    void setSuperuser(const PortKey&, bool v) { superuser_ = v; }

private:
    std::optional<UserInterfaceIdiom> idiom_ = UserInterfaceIdiom::Phone;
    std::string model_;
    std::string systemName_;
    std::string systemVersion_;
    std::string uniqueIdentifier_;
    std::string machine_;
    std::string name_;
    std::vector<std::string> preferredLanguages_{"en"};
    bool superuser_ = false;
};

}  // namespace kit
