#include "app/desktop/FileOptions.h"

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>
#include <QSpinBox>
#include <functional>

#include "app/desktop/Texts.h"

namespace {

struct SField {
    QWidget* widget;
    std::function<QString()> value;
};

// Numbers have one more below their least, which stands for none.
SField NumberField(const SFileOption& option) {
    auto* field = new QSpinBox;
    field->setRange(option.minimum - 1, option.maximum);
    field->setSpecialValueText(Text(EText::AsPictureFile));
    field->setValue(option.value.empty() ? field->minimum() : std::stoi(option.value));
    field->selectAll();
    return {field, [field] {
                return field->value() == field->minimum() ? QString() : field->cleanText();
            }};
}

SField ListField(const SFileOption& option) {
    auto* field = new QComboBox;
    field->addItem(Text(EText::AsPictureFile), QString());
    for (const std::string& value : option.values) {
        const QString word = QString::fromStdString(value);
        field->addItem(word, word);
    }
    field->setCurrentIndex(field->findData(QString::fromStdString(option.value)));
    return {field, [field] { return field->currentData().toString(); }};
}

EText NameOf(const SFileOption& option) {
    return option.name == "quality"       ? EText::Quality
           : option.name == "subsampling" ? EText::Subsampling
                                          : EText::Compression;
}

}  // namespace

bool AskFileOptions(QWidget* parent, std::vector<SFileOption>& options) {
    if (options.empty()) return true;
    QDialog dialog(parent);
    dialog.setWindowTitle(Text(EText::FileOptions));
    auto* form = new QFormLayout(&dialog);
    std::vector<SField> fields;
    for (const SFileOption& option : options) {
        fields.push_back(option.values.empty() ? NumberField(option) : ListField(option));
        fields.back().widget->setObjectName(QString::fromStdString(option.name));
        form->addRow(Text(NameOf(option)), fields.back().widget);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    form->addRow(buttons);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    if (dialog.exec() != QDialog::Accepted) return false;
    for (std::size_t i = 0; i < options.size(); ++i) {
        options[i].value = fields[i].value().toStdString();
    }
    return true;
}
