#pragma once
// The three methods computed from the data, and the rank-based break picking
// of the quantile method.

#include "classify/ClassificationMethod.h"

namespace mervola::classify {

// ClassiQuantile: the class breaks (upper limits) by ranks over `sorted`
// (the non-null values in ascending order) behind `nullCount` Null records,
// which sort first and count in the record total. Equal values never span a
// break; fewer breaks than `classes` come back when the data run out.
std::vector<double> ClassiQuantile(const std::vector<double> &sorted, int nullCount, int classes);

// Lower limit of the class after `previousBreak`: + 0.1 when the break, as
// the grid writes it, has a decimal part, else + 1.
double quantileNextLower(double previousBreak);

class QuantileMethod final : public ClassificationMethod {
public:
    QString id() const override { return kQuantile; }
    // The classes from given breaks, with the quantile lower limits.
    static std::vector<ClassRange> rangesFromBreaks(double minimum, const std::vector<double> &breaks);

private:
    Breaks calculateBreaks(const FieldColumn &column, int classCount, Questions questions) const override;
};

class RegularIntervalsMethod final : public ClassificationMethod {
public:
    QString id() const override { return kRegolari; }

private:
    Breaks calculateBreaks(const FieldColumn &column, int classCount, Questions questions) const override;
};

class UniqueValueMethod final : public ClassificationMethod {
public:
    QString id() const override { return kUnico; }
    // The distinct non-null values in ascending order, as grid texts.
    static QStringList distinctValues(const FieldColumn &column);

private:
    Breaks calculateBreaks(const FieldColumn &column, int classCount, Questions questions) const override;
};

}  // namespace mervola::classify
