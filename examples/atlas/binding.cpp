#include "binding.h"

#include "reading.h"

#include <algorithm>

namespace atlas {

namespace {

// Calls visit with every comparison of a predicate, from left to right.
template <class Visit>
void eachComparison(const Predicate& predicate, const Visit& visit) {
  if (predicate.kind == Predicate::Kind::kComparison) visit(predicate.comparison);
  for (const Predicate& part : predicate.parts) eachComparison(part, visit);
}

std::string listed(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
  return list;
}

std::vector<std::string> classNames(const Database& database) {
  std::vector<std::string> names;
  for (const ClassSchema& cls : database.schema().classes()) names.push_back(cls.name);
  return names;
}

std::vector<std::string> fieldNames(const ClassSchema& cls) {
  std::vector<std::string> names;
  for (const Field& field : cls.fields) names.push_back(field.name);
  return names;
}

// A mistake at a place of the predicate's text.
Mistake mistakeAt(const std::string& text, const Piece& piece, const std::string& reason) {
  return Mistake("in the predicate, " + std::string(PredicateError(text, piece.position, reason).what()));
}

std::vector<const ClassSchema*> classesWith(const Database& database, const std::vector<std::string>& fields) {
  std::vector<const ClassSchema*> found;
  for (const ClassSchema& cls : database.schema().classes()) {
    const auto has = [&](const std::string& field) { return cls.find(field) != nullptr; };
    if (std::all_of(fields.begin(), fields.end(), has)) found.push_back(&cls);
  }
  return found;
}

}  // namespace

const ClassSchema& classOf(const Database& database, const std::string& text, const Predicate& predicate,
                           const std::string& className) {
  if (!className.empty()) {
    if (const ClassSchema* cls = database.schema().find(className)) return *cls;
    throw Mistake("there is no class \"" + className + "\"; there are " + listed(classNames(database)));
  }
  std::vector<std::string> fields;
  eachComparison(predicate, [&](const Comparison& comparison) {
    if (classesWith(database, {comparison.field.text}).empty()) {
      throw mistakeAt(text, comparison.field, "no class has a field \"" + comparison.field.text + "\"");
    }
    if (std::find(fields.begin(), fields.end(), comparison.field.text) == fields.end()) {
      fields.push_back(comparison.field.text);
    }
  });
  const std::vector<const ClassSchema*> found = classesWith(database, fields);
  if (found.size() == 1) return *found[0];
  if (found.empty()) throw Mistake("no class has all of the fields " + listed(fields));
  std::vector<std::string> names(found.size());
  std::transform(found.begin(), found.end(), names.begin(), [](const ClassSchema* cls) { return cls->name; });
  throw Mistake("several classes have " + listed(fields) + "; choose one by --class: " + listed(names));
}

bool hasPatterns(char type) {
  Value text(type), pattern(type);
  convertText(text, "01");
  convertText(pattern, "0*");
  const Buffer a = text.stored(), b = pattern.stored();
  const Order order{0, kStored};
  return compare(type, a, b, order) == 0 && compare(type, b, a, order) != 0;
}

Order orderOf(const Database& database, const ClassSchema& cls, const Field& field) {
  const Index* index = database.index(cls, field);
  return {index != nullptr ? index->settings().options : KtCMP_NO_WILDCARDS, kStored};
}

namespace {

// A reference as objects store it.
Buffer storedReference(ObjId id, const ClassSchema& target) {
  Value value(KT_ID_KtRef);
  KtRef& reference = *static_cast<KtRef*>(value.data());
  reference = KtRef();
  reference = id;
  reference.database = kThisDatabase;
  reference.classNumber = target.number;
  return value.stored();
}

Buffer nullValue(char type) {
  Value value(type);
  value.clear();
  return value.stored();
}

class Binder {
public:
  Binder(const Database& database, const ClassSchema& cls, const std::string& text)
      : database_(database), class_(cls), text_(text) {}

  BoundPredicate bind(const Predicate& predicate) const {
    BoundPredicate bound;
    bound.kind = predicate.kind;
    if (predicate.kind == Predicate::Kind::kComparison) bound.comparison = bind(predicate.comparison);
    for (const Predicate& part : predicate.parts) bound.parts.push_back(bind(part));
    return bound;
  }

private:
  BoundComparison bind(const Comparison& comparison) const {
    const Field* field = class_.find(comparison.field.text);
    if (field == nullptr) {
      throw mistakeAt(text_, comparison.field,
                      "class " + class_.name + " has no field \"" + comparison.field.text + "\"; it has " +
                          listed(fieldNames(class_)));
    }
    refuseOperator(*field, comparison);
    BoundComparison bound;
    bound.field = class_.placeOf(*field);
    bound.op = comparison.op;
    bound.order = orderOf(database_, class_, *field);
    for (const Piece& value : comparison.values) bound.values.push_back(read(*field, comparison.op, value));
    if (comparison.op == Operator::kIsNull && manager().SupportsNullValue(field->type) != 0) {
      bound.values.push_back(nullValue(field->type));
    }
    return bound;
  }

  void refuseOperator(const Field& field, const Comparison& comparison) const {
    const Operator op = comparison.op;
    const bool isOrdered = op != Operator::kEqual && op != Operator::kNotEqual && op != Operator::kIsNull;
    if (field.references && isOrdered) {
      throw mistakeAt(text_, comparison.field,
                      "\"" + field.name + "\" is a reference, which is compared only by =, != and \"is null\"");
    }
    if (op == Operator::kLike && !hasPatterns(field.type)) {
      throw mistakeAt(text_, comparison.field,
                      "\"" + field.name + "\" is of the type " + field.typeName + ", which has no patterns");
    }
  }

  Buffer read(const Field& field, Operator op, const Piece& piece) const {
    if (field.references) return reference(*field.references, piece);
    Value value(field.type);
    scan(value, field, piece);
    if (value.isNull()) throw mistakeAt(text_, piece, "this value is null, which only \"is null\" finds");
    Buffer stored = value.stored();
    if (op != Operator::kLike && !hasPlace(field.type, stored)) {
      throw mistakeAt(text_, piece, "this value has no place in the order of " + field.typeName);
    }
    return stored;
  }

  void scan(Value& value, const Field& field, const Piece& piece) const {
    try {
      value.scan(piece.text, field, database_.language());
    } catch (const Mistake& unreadable) {
      throw mistakeAt(text_, piece, "\"" + field.name + "\": " + unreadable.what());
    }
  }

  // The stored reference to the object that the text names.
  Buffer reference(const FieldPlace& place, const Piece& piece) const {
    const ClassSchema& target = database_.schema().classes()[place.cls];
    const Field& key = target.fields[place.field];
    Value value(key.type);
    scan(value, key, piece);
    const ObjId id = database_.index(target, key)->find(value.stored());
    if (id.IsNullValue()) {
      throw mistakeAt(text_, piece, "there is no " + target.name + " with this " + key.name);
    }
    return storedReference(id, target);
  }

  const Database& database_;
  const ClassSchema& class_;
  const std::string& text_;
};

}  // namespace

BoundPredicate bindPredicate(const Database& database, const ClassSchema& cls, const std::string& text,
                             const Predicate& predicate) {
  return Binder(database, cls, text).bind(predicate);
}

namespace {

Answer answerIf(bool holds) { return holds ? Answer::kTrue : Answer::kFalse; }

}  // namespace

Answer answer(const BoundComparison& comparison, char type, Bytes stored, bool isNull) {
  if (comparison.op == Operator::kIsNull) return answerIf(isNull);
  if (isNull) return Answer::kUnknown;
  Order order = comparison.order;
  if (comparison.op == Operator::kLike) order.options &= static_cast<unsigned short>(~KtCMP_NO_WILDCARDS);
  const int sign = compare(type, stored, comparison.values[0], order);
  switch (comparison.op) {
    case Operator::kEqual:
    case Operator::kLike: return answerIf(sign == 0);
    case Operator::kNotEqual: return answerIf(sign != 0);
    case Operator::kLess: return answerIf(sign < 0);
    case Operator::kLessEqual: return answerIf(sign <= 0);
    case Operator::kGreater: return answerIf(sign > 0);
    case Operator::kGreaterEqual: return answerIf(sign >= 0);
    case Operator::kBetween: return answerIf(sign >= 0 && compare(type, stored, comparison.values[1], order) <= 0);
    case Operator::kIsNull: break;
  }
  return Answer::kUnknown;
}

Judge::Judge(const ClassSchema& cls) {
  for (const Field& field : cls.fields) values_.emplace_back(field.type);
}

Answer Judge::answerOf(const BoundComparison& comparison, const Record& record) {
  const Bytes stored = record.fieldBytes(comparison.field);
  Value& value = values_[comparison.field];
  const bool mayBeNull = manager().SupportsNullValue(value.type()) != 0;
  if (mayBeNull) value.load(stored);
  return answer(comparison, value.type(), stored, mayBeNull && value.isNull());
}

Answer Judge::answerOf(const BoundPredicate& predicate, const Record& record) {
  if (predicate.kind == Predicate::Kind::kComparison) return answerOf(predicate.comparison, record);
  if (predicate.kind == Predicate::Kind::kNot) {
    const Answer inner = answerOf(predicate.parts[0], record);
    return inner == Answer::kUnknown ? inner : answerIf(inner == Answer::kFalse);
  }
  // The least of all answers for "and", the greatest for "or"; what decides ends the walk.
  const bool isAnd = predicate.kind == Predicate::Kind::kAnd;
  const Answer decisive = isAnd ? Answer::kFalse : Answer::kTrue;
  Answer result = isAnd ? Answer::kTrue : Answer::kFalse;
  for (const BoundPredicate& part : predicate.parts) {
    const Answer one = answerOf(part, record);
    result = isAnd ? std::min(result, one) : std::max(result, one);
    if (result == decisive) break;
  }
  return result;
}

}  // namespace atlas
