<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
    <context>
        <name>main</name>
        <message>
            <source>Documentation</source>
            <translation>文档</translation>
        </message>
    </context>
</TS>
