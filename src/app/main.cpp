#include "app/corvane_app.h"

int main(int argc, char* argv[]) {
    return corvane::app::CorvaneApp::main(argc, argv);
}
