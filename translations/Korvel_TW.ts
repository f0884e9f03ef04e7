<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_TW">
<context>
    <name>AboutDialog</name>
    <message>
        <source>About APP</source>
        <translation>關於應用</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>版本</translation>
    </message>
    <message>
        <source>Visit our website for more information and instructions.</source>
        <translation>造訪我們的網站以取得更多資訊與使用說明。</translation>
    </message>
</context>
<context>
    <name>AppSettingsDialog</name>
    <message>
        <source>Application Settings</source>
        <translation>應用設定</translation>
    </message>
    <message>
        <source>Video save path</source>
        <translation>影片儲存路徑</translation>
    </message>
    <message>
        <source>Select video save path</source>
        <translation>選擇影片儲存路徑</translation>
    </message>
    <message>
        <source>Screenshot save path</source>
        <translation>截圖儲存路徑</translation>
    </message>
    <message>
        <source>Select screenshot save path</source>
        <translation>選擇截圖儲存路徑</translation>
    </message>
    <message>
        <source>KeyMapping save path</source>
        <translation>按鍵映射儲存路徑</translation>
    </message>
    <message>
        <source>Select KeyMapping save path</source>
        <translation>選擇按鍵映射儲存路徑</translation>
    </message>
    <message>
        <source>Common Phrase save path</source>
        <translation>常用語儲存路徑</translation>
    </message>
    <message>
        <source>Select Common Phrase save path</source>
        <translation>選擇常用語儲存路徑</translation>
    </message>
    <message>
        <source>Device Nickname save path</source>
        <translation>裝置暱稱儲存路徑</translation>
    </message>
    <message>
        <source>Select Device Nickname save path</source>
        <translation>選擇裝置暱稱儲存路徑</translation>
    </message>
    <message>
        <source>Device Group save path</source>
        <translation>裝置群組儲存路徑</translation>
    </message>
    <message>
        <source>Select Device Group save path</source>
        <translation>選擇裝置群組儲存路徑</translation>
    </message>
    <message>
        <source>Success</source>
        <translation>成功</translation>
    </message>
    <message>
        <source>Please restart the application to apply the changes.</source>
        <translation>請重新啟動應用以套用變更。</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>語言</translation>
    </message>
    <message>
        <source>Browse...</source>
        <translation>瀏覽...</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>儲存</translation>
    </message>
</context>
<context>
    <name>DeviceList</name>
    <message>
        <source>Device Groups</source>
        <translation>裝置群組</translation>
    </message>
    <message>
        <source>No device groups</source>
        <translation>沒有裝置群組</translation>
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
        <translation>手機農場</translation>
    </message>
    <message>
        <source>Korvel Multi-Phones Control</source>
        <translation>Korvel 多手機控制</translation>
    </message>
    <message>
        <source>Devices</source>
        <translation>裝置</translation>
    </message>
    <message>
        <source>Scan Devices</source>
        <translation>掃描裝置</translation>
    </message>
    <message>
        <source>Manage Device Groups</source>
        <translation>管理裝置群組</translation>
    </message>
    <message>
        <source>Restart ADB Server</source>
        <translation>重新啟動 ADB 服務</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>工具</translation>
    </message>
    <message>
        <source>Common Phrases</source>
        <translation>常用語</translation>
    </message>
    <message>
        <source>Key Mapping</source>
        <translation>按鍵映射</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>設定</translation>
    </message>
    <message>
        <source>About APP</source>
        <translation>關於應用</translation>
    </message>
    <message>
        <source>APP Settings</source>
        <translation>應用設定</translation>
    </message>
    <message>
        <source>No Devices In This Group, Click To Scan</source>
        <translation>此群組沒有裝置，點擊掃描</translation>
    </message>
</context>
</TS>
