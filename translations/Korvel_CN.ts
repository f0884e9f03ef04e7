<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>AboutDialog</name>
    <message>
        <source>About APP</source>
        <translation>关于应用</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>版本</translation>
    </message>
    <message>
        <source>Visit our website for more information and instructions.</source>
        <translation>访问我们的网站以获取更多信息和使用说明。</translation>
    </message>
</context>
<context>
    <name>AppSettingsDialog</name>
    <message>
        <source>Application Settings</source>
        <translation>应用设置</translation>
    </message>
    <message>
        <source>Video save path</source>
        <translation>视频保存路径</translation>
    </message>
    <message>
        <source>Select video save path</source>
        <translation>选择视频保存路径</translation>
    </message>
    <message>
        <source>Screenshot save path</source>
        <translation>截图保存路径</translation>
    </message>
    <message>
        <source>Select screenshot save path</source>
        <translation>选择截图保存路径</translation>
    </message>
    <message>
        <source>KeyMapping save path</source>
        <translation>按键映射保存路径</translation>
    </message>
    <message>
        <source>Select KeyMapping save path</source>
        <translation>选择按键映射保存路径</translation>
    </message>
    <message>
        <source>Common Phrase save path</source>
        <translation>常用语保存路径</translation>
    </message>
    <message>
        <source>Select Common Phrase save path</source>
        <translation>选择常用语保存路径</translation>
    </message>
    <message>
        <source>Device Nickname save path</source>
        <translation>设备昵称保存路径</translation>
    </message>
    <message>
        <source>Select Device Nickname save path</source>
        <translation>选择设备昵称保存路径</translation>
    </message>
    <message>
        <source>Device Group save path</source>
        <translation>设备分组保存路径</translation>
    </message>
    <message>
        <source>Select Device Group save path</source>
        <translation>选择设备分组保存路径</translation>
    </message>
    <message>
        <source>Success</source>
        <translation>成功</translation>
    </message>
    <message>
        <source>Please restart the application to apply the changes.</source>
        <translation>请重新启动应用以使更改生效。</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>语言</translation>
    </message>
    <message>
        <source>Browse...</source>
        <translation>浏览...</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
</context>
<context>
    <name>DeviceList</name>
    <message>
        <source>Device Groups</source>
        <translation>设备分组</translation>
    </message>
    <message>
        <source>No device groups</source>
        <translation>没有设备分组</translation>
    </message>
</context>
<context>
    <name>KVAlert</name>
    <message>
        <source>Alert</source>
        <translation>提示</translation>
    </message>
</context>
<context>
    <name>Main</name>
    <message>
        <source>Phone Farms</source>
        <translation>手机农场</translation>
    </message>
    <message>
        <source>Korvel Multi-Phones Control</source>
        <translation>Korvel 多手机控制</translation>
    </message>
    <message>
        <source>Devices</source>
        <translation>设备</translation>
    </message>
    <message>
        <source>Scan Devices</source>
        <translation>扫描设备</translation>
    </message>
    <message>
        <source>Manage Device Groups</source>
        <translation>管理设备分组</translation>
    </message>
    <message>
        <source>Restart ADB Server</source>
        <translation>重启 ADB 服务</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>工具</translation>
    </message>
    <message>
        <source>Common Phrases</source>
        <translation>常用语</translation>
    </message>
    <message>
        <source>Key Mapping</source>
        <translation>按键映射</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>设置</translation>
    </message>
    <message>
        <source>About APP</source>
        <translation>关于应用</translation>
    </message>
    <message>
        <source>APP Settings</source>
        <translation>应用设置</translation>
    </message>
    <message>
        <source>No Devices In This Group, Click To Scan</source>
        <translation>此分组没有设备，点击扫描</translation>
    </message>
</context>
</TS>
