#include <vltextstream/reading/column_builder.hpp>
