#pragma once
// The folder a customer's documents are saved in: the documents folder, then a folder named after the
// customer, then either the object's name or the customer's address (region and district as folder
// levels, town, street, house and apartment as one folder name), as the menu options choose.

#include <QString>
#include <functional>

class TModuleSQL;

namespace CustomerFolder {

// The menu options that shape the folder; defaults are those of a fresh settings store.
struct Options {
    bool bossDir = true;        // CheckBossDir: a folder per customer
    bool detailAddress = false; // CheckBoxDetailAddress: address parts instead of the object's name
    bool region = false;        // CheckBoxRegion
    bool area = false;          // CheckBoxArea
    bool city = true;           // CheckBoxCity
    bool street = true;         // CheckBoxStreet
    bool house = true;          // CheckBoxHouse
    bool apartment = true;      // CheckBoxApartment

    // Reads the options by their settings keys (the objectNames of the menu options).
    static Options fromFlags(const std::function<bool(const QString &key)> &flag);
};

// The customer's address parts as typed (columns Region, Area, City, Street, House, numroom).
struct AddressParts {
    QString region;
    QString area;
    QString city;
    QString street;
    QString house;
    QString apartment;
};

// One folder name made safe: a double quote and / | * ? : < > become backticks, "%" is dropped,
// a backslash becomes backslashReplacement, control characters become blanks, the ends are trimmed, a
// name of dots only cannot climb out of its parent, and an overlong name is cut to fit the file system.
QString cleanPart(const QString &text, QChar backslashReplacement = QLatin1Char('`'));

// SetDirectoryCustomerAndObject: the folder (not created) for a document of customer and object under
// documentsFolder. Customer and object are the names as shown (double quotes, not backticks). Without
// the per-customer option, or without a customer, it is documentsFolder itself.
QString SetDirectoryCustomerAndObject(const QString &documentsFolder, const QString &customer,
                                      const QString &object, const AddressParts &address,
                                      const Options &options);

// The customer's address parts from the register in cashbase.db (empty parts when it is not there).
AddressParts readAddress(TModuleSQL &module, const QString &customer);

// The folder for a document, with the address read from the register, created on disk. When it cannot
// be created, documentsFolder is returned so that the save dialog still opens somewhere sensible.
QString makeFolderForDocument(TModuleSQL &module, const QString &documentsFolder, const QString &customer,
                              const QString &object, const Options &options);

} // namespace CustomerFolder
