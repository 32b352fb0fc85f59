import QtQuick 2.13

NoSuchType {}
