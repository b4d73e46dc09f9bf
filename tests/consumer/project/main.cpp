#include <ombrix/oxexception.h>

#include <iostream>

int main() {
  const ombrix::OXException error(2, "model.cpp", 7, "ombrix::OXModel::close", "a text");
  std::cout << error.what() << std::endl;
  return error.getCode() == 2 ? 0 : 1;
}
